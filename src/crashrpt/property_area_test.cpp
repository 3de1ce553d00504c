#include "crashrpt/property_area.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

namespace {

class Properties : public testing::Test {
 protected:
  bool Set(const std::string& name, const std::string& value) {
    return SetProperty(*m_area, name.c_str(), value.c_str());
  }
  std::vector<Property> Get() const { return GetProperties(*m_area); }

  std::unique_ptr<PropertyArea> m_area = std::make_unique<PropertyArea>();
};

TEST_F(Properties, AreNoneAtFirst) {
  EXPECT_TRUE(Get().empty());
}

TEST_F(Properties, AreKeptInOrder) {
  ASSERT_TRUE(Set("b", "1"));
  ASSERT_TRUE(Set("a", ""));
  EXPECT_EQ(Get(), (std::vector<Property>{{"b", "1"}, {"a", ""}}));
}

TEST_F(Properties, AreReplacedByName) {
  Set("a", "1");
  Set("b", "2");
  ASSERT_TRUE(Set("a", "a longer value"));
  EXPECT_EQ(Get(), (std::vector<Property>{{"a", "a longer value"}, {"b", "2"}}));
}

TEST_F(Properties, FillTheRoomToTheLastByte) {
  Set("a", "1");
  const std::string rest(kPropertyRoom - 4 - 3, 'x');
  EXPECT_FALSE(Set("b", rest + "x"));
  EXPECT_EQ(Get(), (std::vector<Property>{{"a", "1"}})) << "nothing is changed";
  ASSERT_TRUE(Set("b", rest));
  EXPECT_EQ(Get(), (std::vector<Property>{{"a", "1"}, {"b", rest}}));
  EXPECT_FALSE(Set("c", ""));
  EXPECT_FALSE(Set("a", "12"));
  EXPECT_EQ(Get(), (std::vector<Property>{{"a", "1"}, {"b", rest}}));
}

TEST_F(Properties, StayAsTheyWereWhileAChangeIsUnderWay) {
  Set("a", "1");
  // What a crash in the middle of the next change leaves behind.
  PropertyArea::Copy& next = m_area->copies[1 - m_area->valid];
  next.used = 1;
  next.text[0] = 'x';
  EXPECT_EQ(Get(), (std::vector<Property>{{"a", "1"}}));
}

TEST_F(Properties, MayBeReadWhileTheyChange) {
  std::atomic<bool> done = false;
  std::thread program([&] {
    for (size_t i = 0; !done; ++i) Set("a", std::string(i * 7919 % 30000, 'x'));
  });
  for (int i = 0; i < 20000; ++i) {
    for (const Property& property : Get())
      ASSERT_LE(property.name.size() + property.value.size(), kPropertyRoom);
  }
  done = true;
  program.join();
}

TEST_F(Properties, AreNothingWhenTheMemoryIsDamaged) {
  Set("a", "1");
  PropertyArea::Copy& copy = m_area->copies[m_area->valid];
  copy.used = kPropertyRoom + 1;
  EXPECT_TRUE(Get().empty()) << "beyond its end";
  copy.used = 3;
  EXPECT_TRUE(Get().empty()) << "no terminator";
  copy.used = 2;
  EXPECT_TRUE(Get().empty()) << "no value";
  m_area->valid = 2;
  EXPECT_TRUE(Get().empty()) << "no such copy";
}

}  // namespace
