#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "kvtools/kvtools.h"

namespace {

// The text taken apart again, as a local time; seconds are cut off in the text.
std::time_t LocalTimeOf(const std::string& text) {
  std::tm parts = {};
  parts.tm_isdst = -1;
  int read = 0;
  EXPECT_EQ(std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d%n", &parts.tm_year, &parts.tm_mon, &parts.tm_mday,
                        &parts.tm_hour, &parts.tm_min, &read),
            5)
      << text;
  EXPECT_EQ(static_cast<size_t>(read), text.size()) << text;
  parts.tm_year -= 1900;
  parts.tm_mon -= 1;
  return std::mktime(&parts);
}

TEST(SysDate, IsTheLocalDateAndTimeToTheMinute) {
  const std::time_t before = std::time(nullptr);
  const std::string text = KVT_GetCurrentSysDate(0, 0);
  const std::time_t after = std::time(nullptr);
  EXPECT_EQ(text.size(), 16U) << text;
  const std::time_t told = LocalTimeOf(text);
  EXPECT_GT(told, before - 60);
  EXPECT_LE(told, after);
}

TEST(SysDate, IsTheDateAloneWhenAsked) {
  std::string before;
  std::string date;
  std::string after;
  // Midnight may pass between two calls, but hardly twice.
  do {
    before = KVT_GetCurrentSysDate(0, 0);
    date = KVT_GetCurrentSysDate(1, 0);
    after = KVT_GetCurrentSysDate(0, 0);
  } while (before.substr(0, 10) != after.substr(0, 10));
  EXPECT_EQ(date, before.substr(0, 10));
}

// A place where it is never the same time as in Greenwich, nor the same day for most of the day.
class FarAway {
 public:
  FarAway() { Set("TZ=FAR-11"); }
  ~FarAway() { Set(m_strBefore.c_str()); }
  FarAway(const FarAway&) = delete;
  FarAway& operator=(const FarAway&) = delete;

 private:
  static void Set(const char* setting) {
#ifdef _WIN32
    _putenv(setting);
    _tzset();
#else
    const std::string text = setting;
    const std::string value = text.substr(text.find('=') + 1);
    if (value.empty()) {
      unsetenv("TZ");
    } else {
      setenv("TZ", value.c_str(), 1);
    }
    tzset();
#endif
  }
  const std::string m_strBefore =
      std::string("TZ=") + (std::getenv("TZ") != nullptr ? std::getenv("TZ") : "");
};

TEST(SysDate, IsTheSameForEveryPlaceWhenAsked) {
  const FarAway there;
  std::string before;
  std::string text;
  std::string local;
  std::string date;
  char expected[32];
  do {
    before = KVT_GetCurrentSysDate(0, 1);
    const std::time_t now = std::time(nullptr);
    ASSERT_GT(std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M", std::gmtime(&now)), 0U);
    local = KVT_GetCurrentSysDate(0, 0);
    date = KVT_GetCurrentSysDate(1, 1);
    text = KVT_GetCurrentSysDate(0, 1);
  } while (before != text);
  EXPECT_EQ(text, expected);
  EXPECT_NE(local, expected) << "it is eleven hours later there";
  EXPECT_EQ(date, text.substr(0, 10));
}

}  // namespace
