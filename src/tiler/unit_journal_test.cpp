#include "tiler/unit_journal.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/temporary_folder.h"
#include "tiler/tiler_error.h"

namespace tiler {
namespace {

class Journal : public testing::Test {
 protected:
  std::string Text() const { return ReadFile(m_path); }

  TemporaryFolder m_folder;
  std::string m_path = m_folder.Path("journal");
};

TEST_F(Journal, TakesUpWhatWasFinished) {
  {
    UnitJournal journal(m_path, "run a");
    EXPECT_EQ(journal.ChecksumOf({3, 4, 5}), std::nullopt);
    journal.Add({3, 4, 5}, 4000000000U);
    journal.Add({3, 4, 6}, 0);
    EXPECT_EQ(journal.ChecksumOf({3, 4, 5}), std::nullopt) << "of an earlier run only";
  }
  const UnitJournal journal(m_path, "run a");
  EXPECT_EQ(journal.ChecksumOf({3, 4, 5}), 4000000000U);
  EXPECT_EQ(journal.ChecksumOf({3, 4, 6}), 0U);
  EXPECT_EQ(journal.ChecksumOf({4, 4, 6}), std::nullopt);
  EXPECT_EQ(Text(), "mosaicon-tiles 1 run a\n3 4 5 4000000000\n3 4 6 0\ntaken up\n")
      << "for the next one, too";
}

TEST_F(Journal, TakesUpNothingOfAnotherRun) {
  for (const std::string first : {"mosaicon-tiles 1 run b", "mosaicon-tiles 2 run a", "run a", ""}) {
    WriteFile(m_path, first + "\n3 4 5 6\n");
    EXPECT_EQ(UnitJournal(m_path, "run a").ChecksumOf({3, 4, 5}), std::nullopt) << first;
    EXPECT_EQ(Text(), "mosaicon-tiles 1 run a\n");
  }
}

TEST_F(Journal, TakesUpWholeLinesOnly) {
  for (const std::string line : {"3 4 5 6", "3 4 5\n", "3 4 5 -6\n", "3 4 5 6 7\n", "3 4 5 99999999999\n",
                                 "x\n", "\n", " 3 4 5 6\n", "03 4 5 6\n", "3 4 5 6\r\n"}) {
    WriteFile(m_path, "mosaicon-tiles 1 run a\n7 7 7 7\n" + line);
    const UnitJournal journal(m_path, "run a");
    EXPECT_EQ(journal.ChecksumOf({3, 4, 5}), std::nullopt) << line;
    EXPECT_EQ(journal.ChecksumOf({7, 7, 7}), 7U) << line;
  }
  WriteFile(m_path, "mosaicon-tiles 1 run a");
  EXPECT_EQ(UnitJournal(m_path, "run a").ChecksumOf({7, 7, 7}), std::nullopt);
}

TEST_F(Journal, TakesOverWhatOthersHaveFinished) {
  WriteFile(m_path, "mosaicon-tiles 1 run a\n3 4 5 6\n3 4 6 7\n");
  const std::string other = m_folder.Path("other");
  WriteFile(other, "mosaicon-tiles 1 run a\n3 4 6 8\n3 4 7 9\n");
  UnitJournal journal(m_path, "run a");
  journal.TakeOver(other, "run a");
  journal.TakeOver(m_folder.Path("none"), "run a");
  EXPECT_EQ(journal.ChecksumOf({3, 4, 5}), 6U);
  EXPECT_EQ(journal.ChecksumOf({3, 4, 6}), 7U) << "its own";
  EXPECT_EQ(journal.ChecksumOf({3, 4, 7}), 9U);
  UnitJournal stranger(m_folder.Path("stranger"), "run b");
  stranger.TakeOver(other, "run b");
  EXPECT_EQ(stranger.ChecksumOf({3, 4, 7}), std::nullopt);
}

TEST_F(Journal, TellsItsState) {
  const auto state = [this] { return StateOfJournal(m_path, "run a"); };
  EXPECT_EQ(state(), JournalState::kNone);
  WriteFile(m_path, "");
  EXPECT_EQ(state(), JournalState::kOfAnotherRun);
  {
    UnitJournal journal(m_path, "run a");
    EXPECT_EQ(state(), JournalState::kUnfinished);
    journal.Add({3, 4, 5}, 6);
    EXPECT_EQ(state(), JournalState::kUnfinished);
    EXPECT_FALSE(journal.Complete());
    EXPECT_EQ(state(), JournalState::kComplete);
    EXPECT_EQ(StateOfJournal(m_path, "run b"), JournalState::kOfAnotherRun);
  }
  {
    const UnitJournal again(m_path, "run a");
    EXPECT_EQ(state(), JournalState::kUnfinished) << "its files have to be looked at again";
  }
  WriteFile(m_path, "mosaicon-tiles 1 run a\ncomplete");
  EXPECT_EQ(state(), JournalState::kUnfinished) << "a line without its end";
}

TEST_F(Journal, MayBeRemovedOnceItIsClosed) {
  UnitJournal journal(m_path, "run a");
  journal.Close();
  EXPECT_TRUE(std::filesystem::remove(m_path));
}

TEST_F(Journal, StopsNothingWhereItCannotBeWritten) {
  UnitJournal journal(m_folder.Path("none/journal"), "run a");
  EXPECT_TRUE(journal.Failure());
  journal.Add({3, 4, 5}, 6);
  EXPECT_TRUE(journal.Complete());
}

TEST_F(Journal, GoesOnBehindTheLastWholeLine) {
  WriteFile(m_path, "mosaicon-tiles 1 run a\n3 4 5 6\n3 4");
  UnitJournal journal(m_path, "run a");
  EXPECT_FALSE(journal.Failure());
  journal.Add({3, 4, 7}, 8);
  journal.Close();
  EXPECT_EQ(Text(), "mosaicon-tiles 1 run a\n3 4 5 6\ntaken up\n3 4 7 8\n");
}

TEST_F(Journal, BelongsToOneRunAtATime) {
  {
    const UnitJournal journal(m_path, "run a");
    EXPECT_THROW(UnitJournal(m_path, "run a"), TilerError);
    EXPECT_THROW(UnitJournal(m_path, "run b"), TilerError);
    EXPECT_EQ(StateOfJournal(m_path, "run a"), JournalState::kUnfinished) << "but may be read";
  }
  EXPECT_NO_THROW(UnitJournal(m_path, "run a"));
}

}  // namespace
}  // namespace tiler
