#include "crashrpt/report_store.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace {

constexpr char kOld[] = "20260101T000000Z-6f9619ff-8b86-d011-b42d-00c04fc964ff";
constexpr char kNew[] = "20260102T000000Z-0f9619ff-8b86-d011-b42d-00c04fc964ff";

class Store : public testing::Test {
 protected:
  void Write(const std::string& name) {
    ASSERT_TRUE(m_store.Begin(name));
    WriteFile(m_store.UnfinishedPath(name) + "\\report.xml", "xml");
    ASSERT_TRUE(m_store.Complete(name));
  }
  TemporaryFolder m_folder;
  ReportStore m_store{m_folder.Path("a") + "\\b"};
};

TEST_F(Store, KeepsReportsByHowFarTheyAre) {
  ASSERT_TRUE(m_store.Begin(kOld));
  EXPECT_FALSE(PathExists(m_store.Path(kOld))) << "not complete yet";
  WriteFile(m_store.UnfinishedPath(kOld) + "\\report.xml", "xml");
  ASSERT_TRUE(m_store.Complete(kOld));
  EXPECT_FALSE(PathExists(m_store.UnfinishedPath(kOld)));
  EXPECT_TRUE(m_store.Pending().empty()) << "the user was not asked";
  ASSERT_TRUE(m_store.MarkAgreed(kOld));
  EXPECT_EQ(m_store.Pending(), std::vector<std::string>{kOld});
  ASSERT_TRUE(m_store.MarkSent(kOld));
  EXPECT_TRUE(m_store.Pending().empty());
  EXPECT_EQ(ReadFile(m_store.SentPath(kOld) + "\\report.xml"), "xml");
  EXPECT_FALSE(m_store.MarkSent(kOld)) << "it is not there any more";
}

TEST_F(Store, ListsOnlyReportsAsPendingOldestFirst) {
  for (const char* name : {kNew, kOld}) {
    Write(name);
    ASSERT_TRUE(m_store.MarkAgreed(name));
  }
  CreateDirectoryA(m_store.PendingPath("other").c_str(), nullptr);
  WriteFile(m_store.PendingPath("20260103T000000Z-0f9619ff-8b86-d011-b42d-00c04fc964ff"), "a file");
  EXPECT_EQ(m_store.Pending(), (std::vector<std::string>{kOld, kNew}));
}

TEST_F(Store, LocksADeliveryUntilItEnds) {
  Write(kOld);
  UniqueHandle lock = m_store.LockDelivery(kOld);
  ASSERT_NE(lock.get(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(m_store.LockDelivery(kOld).get(), INVALID_HANDLE_VALUE);
  EXPECT_NE(m_store.LockDelivery(kNew).get(), INVALID_HANDLE_VALUE) << "another report";
  EXPECT_TRUE(m_store.MarkAgreed(kOld)) << "the lock does not hold the report";
  EXPECT_TRUE(m_store.MarkSent(kOld));
  lock.reset();
  EXPECT_FALSE(PathExists(m_store.PendingPath(kOld) + ".lock"));
  EXPECT_NE(m_store.LockDelivery(kOld).get(), INVALID_HANDLE_VALUE);
}

}  // namespace
