#include "crashrpt/report_store.h"

#include <gtest/gtest.h>

#include "files/system_files.h"
#include "support/temporary_folder.h"

namespace {

constexpr char kOld[] = "20260101T000000Z-6f9619ff-8b86-d011-b42d-00c04fc964ff";
constexpr char kNew[] = "20260102T000000Z-0f9619ff-8b86-d011-b42d-00c04fc964ff";

std::string NameOfDay(int day) {
  return "2026010" + std::to_string(day) + "T000000Z-6f9619ff-8b86-d011-b42d-00c04fc964ff";
}

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
  EXPECT_FALSE(SystemFiles().Exists(m_store.Path(kOld))) << "not complete yet";
  WriteFile(m_store.UnfinishedPath(kOld) + "\\report.xml", "xml");
  ASSERT_TRUE(m_store.Complete(kOld));
  EXPECT_FALSE(SystemFiles().Exists(m_store.UnfinishedPath(kOld)));
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

TEST_F(Store, KeepsTheNewestReports) {
  const std::string sent = NameOfDay(1), pending = NameOfDay(2), delivered = NameOfDay(3),
                    unfinished = NameOfDay(4), declined = NameOfDay(5), last = NameOfDay(6);
  for (const std::string& name : {sent, pending, delivered, declined, last}) Write(name);
  for (const std::string& name : {sent, pending, delivered}) ASSERT_TRUE(m_store.MarkAgreed(name));
  ASSERT_TRUE(m_store.MarkSent(sent));
  ASSERT_TRUE(m_store.Begin(unfinished));
  WriteFile(m_store.Path("notes.txt"), "of the user");
  CreateDirectoryA(m_store.Path("20260101T000000Z-not-ours").c_str(), nullptr);

  m_store.KeepNewest(6);
  EXPECT_TRUE(SystemFiles().Exists(m_store.SentPath(sent))) << "they are no more than six";
  const UniqueHandle lock = m_store.LockDelivery(delivered);
  m_store.KeepNewest(2);
  EXPECT_FALSE(SystemFiles().Exists(m_store.SentPath(sent)));
  EXPECT_FALSE(SystemFiles().Exists(m_store.PendingPath(pending)));
  EXPECT_TRUE(SystemFiles().Exists(m_store.PendingPath(delivered) + "\\report.xml"))
      << "it is being delivered";
  EXPECT_FALSE(SystemFiles().Exists(m_store.UnfinishedPath(unfinished)));
  EXPECT_TRUE(SystemFiles().Exists(m_store.Path(declined) + "\\report.xml"));
  EXPECT_TRUE(SystemFiles().Exists(m_store.Path(last) + "\\report.xml"));
  EXPECT_TRUE(SystemFiles().Exists(m_store.Path("notes.txt")));
  EXPECT_TRUE(SystemFiles().Exists(m_store.Path("20260101T000000Z-not-ours")));
}

TEST_F(Store, DeletesNothingOfTheUsersInAReport) {
  Write(kOld);
  WriteFile(m_store.Path(kOld) + "\\notes.txt", "of the user");
  m_store.KeepNewest(0);
  EXPECT_EQ(ReadFile(m_store.Path(kOld) + "\\notes.txt"), "of the user");
  EXPECT_FALSE(SystemFiles().Exists(m_store.Path(kOld) + "\\report.xml"));
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
  EXPECT_FALSE(SystemFiles().Exists(m_store.PendingPath(kOld) + ".lock"));
  EXPECT_NE(m_store.LockDelivery(kOld).get(), INVALID_HANDLE_VALUE);
}

}  // namespace
