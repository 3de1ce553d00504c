#include "tiler/share_journals.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"
#include "tiler/tiler_error.h"
#include "tiler/unit_journal.h"

namespace tiler {
namespace {

class Shares : public testing::Test {
 protected:
  std::filesystem::path Folder() const { return m_folder.Path(); }
  void Put(const std::string& name, const std::string& text = "mosaicon-tiles 1 run a\ncomplete\n") const {
    WriteFile(m_folder.Path(name), text);
  }
  std::string Refusal() const {
    try {
      CompleteShares(Folder(), "run a");
    } catch (const TilerError& error) {
      return error.what();
    }
    return "";
  }

  TemporaryFolder m_folder;
};

TEST_F(Shares, HaveAJournalEach) {
  EXPECT_EQ(JournalOf("x", std::nullopt).filename(), ".mosaicon-tiles");
  EXPECT_EQ(JournalOf("x", Share{0, 1}).filename(), ".mosaicon-tiles-0-of-1");
  EXPECT_EQ(JournalOf("x", Share{12, 100}).filename(), ".mosaicon-tiles-12-of-100");
}

TEST_F(Shares, AreFoundWhenAllAreThere) {
  for (const char* name :
       {".mosaicon-tiles-0-of-2", ".mosaicon-tiles-1-of-2", ".mosaicon-tiles-2-of-3", ".mosaicon-tiles"})
    Put(name);
  const std::vector<std::filesystem::path> found = CompleteShares(Folder(), "run a");
  ASSERT_EQ(found.size(), 2U) << "whatever there is of others";
  EXPECT_EQ(found[0].filename(), ".mosaicon-tiles-0-of-2");
  EXPECT_EQ(found[1].filename(), ".mosaicon-tiles-1-of-2");
}

TEST_F(Shares, AreNamedWhenTheyAreMissing) {
  Put(".mosaicon-tiles-1-of-3");
  EXPECT_EQ(Refusal(), "the shares 0/3 and 2/3 are missing");
  Put(".mosaicon-tiles-2-of-3", "mosaicon-tiles 1 run a\n1 2 3 4\n");
  EXPECT_EQ(Refusal(), "the share 0/3 is missing; the share 2/3 is not finished");
  Put(".mosaicon-tiles-0-of-3", "mosaicon-tiles 1 run b\ncomplete\n");
  EXPECT_EQ(Refusal(),
            "the share 2/3 is not finished; the share 0/3 is of another image or of other options");
}

TEST_F(Shares, AreNotAllNamedWhenTheyAreMany) {
  Put(".mosaicon-tiles-0-of-100");
  const std::string refusal = Refusal();
  EXPECT_EQ(refusal.rfind("the shares 1/100, 2/100, ", 0), 0U) << refusal;
  EXPECT_NE(refusal.find(", 20/100 and 79 more are missing"), std::string::npos) << refusal;
}

TEST_F(Shares, AreThoseOfWhichMostIsThere) {
  for (const char* name : {".mosaicon-tiles-0-of-2", ".mosaicon-tiles-3-of-7"}) Put(name);
  EXPECT_EQ(Refusal(), "the share 1/2 is missing");
}

TEST_F(Shares, AreRatherThoseOfThisRun) {
  Put(".mosaicon-tiles-0-of-1", "mosaicon-tiles 1 run b\ncomplete\n");
  Put(".mosaicon-tiles-1-of-3");
  EXPECT_EQ(Refusal(), "the shares 0/3 and 2/3 are missing");
}

TEST_F(Shares, AreNotWhatLooksLikeThem) {
  for (const char* name : {".mosaicon-tiles-00-of-1", ".mosaicon-tiles-0-of-1x", ".mosaicon-tiles-0-of-0",
                           ".mosaicon-tiles-0-of-10001", ".mosaicon-tiles--1-of-1", "mosaicon-tiles-0-of-1"})
    Put(name);
  EXPECT_EQ(Refusal(), "there are no shares of a map in " + m_folder.Path());
}

TEST_F(Shares, AreNotInAFolderThatIsNotThere) {
  EXPECT_THROW(CompleteShares(Folder() / "none", "run a"), TilerError);
}

TEST_F(Shares, DoNotDisturbOneAnother) {
  const auto check = [this](const std::optional<Share>& share) { CheckNobodyIsAtWork(Folder(), share); };
  Put(".mosaicon-tiles-0-of-2");
  EXPECT_NO_THROW(check(std::nullopt));
  const UnitJournal atWork(m_folder.Path(".mosaicon-tiles-1-of-2"), "run a");
  EXPECT_NO_THROW(check(Share{0, 2}));
  EXPECT_THROW(check((Share{1, 2})), TilerError);
  EXPECT_THROW(check(std::nullopt), TilerError);
}

TEST_F(Shares, LeaveNoJournalBehind) {
  for (const char* name : {".mosaicon-tiles-0-of-2", ".mosaicon-tiles", ".mosaicon-tiles-mine", "doc.kml"})
    Put(name);
  RemoveJournals(Folder());
  EXPECT_FALSE(FileExists(m_folder.Path(".mosaicon-tiles-0-of-2")));
  EXPECT_FALSE(FileExists(m_folder.Path(".mosaicon-tiles")));
  EXPECT_TRUE(FileExists(m_folder.Path("doc.kml")));
  EXPECT_TRUE(FileExists(m_folder.Path(".mosaicon-tiles-mine")));
}

}  // namespace
}  // namespace tiler
