#include "batch/publish_command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "files/path_text.h"
#include "support/temporary_folder.h"

namespace {

class PublishCommandTest : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(m_folder.Path("a map/18"));
    WriteFile(m_folder.Path("a map/18/1.png"), "tile");
    WriteFile(m_folder.Path("a map/leaflet.html"), "page");
    EXPECT_EQ(
        mirror::ParsePublishAddress("file:///" + files::Utf8Of(m_folder.Path("web")), m_arguments.address),
        "");
    m_arguments.folders = {m_folder.Path("a map")};
  }

  int Run() {
    m_out.str("");
    m_problems.str("");
    return Publish(m_arguments, {}, m_folder.Path("data"),
                   {.out = m_out,
                    .problems = m_problems,
                    .isInterrupted = [this] { return m_isInterrupted; },
                    .pathOf = [](const std::string& text) { return files::PathOf(text); },
                    .shown = [](const std::string& text) { return text; }});
  }
  std::string Published(const std::string& name) const {
    return ReadFile(m_folder.Path("web/a_map/" + name));
  }

  TemporaryFolder m_folder;
  PublishArguments m_arguments;
  std::ostringstream m_out;
  std::ostringstream m_problems;
  bool m_isInterrupted = false;
};

TEST_F(PublishCommandTest, PublishesAFolderUnderItsName) {
  EXPECT_EQ(Run(), kPublished) << m_problems.str();
  EXPECT_EQ(Published("18/1.png"), "tile");
  EXPECT_EQ(Published("leaflet.html"), "page");
  EXPECT_EQ(m_out.str(), "2 files sent (0.0 MB), 0 were there, 0 deleted\nPublished: " +
                             m_arguments.address.Below("a_map").Text() + "\n");
  EXPECT_EQ(m_problems.str(), "");
}

TEST_F(PublishCommandTest, SaysNothingWhenItIsQuiet) {
  m_arguments.quiet = true;
  EXPECT_EQ(Run(), kPublished);
  EXPECT_EQ(m_out.str(), "");
}

TEST_F(PublishCommandTest, SaysWhatThereIsToDo) {
  m_arguments.dryRun = true;
  EXPECT_EQ(Run(), kPublished);
  EXPECT_EQ(m_out.str(), "to send: 18/1.png\nto send: leaflet.html\n2 files to send (0.0 MB), 0 are there\n");
  EXPECT_FALSE(FileExists(m_folder.Path("web/a_map/leaflet.html")));
}

TEST_F(PublishCommandTest, NamesWhatIsOnlyThere) {
  Run();
  WriteFile(m_folder.Path("web/a_map/old.png"), "old");
  EXPECT_EQ(Run(), kPublished);
  EXPECT_TRUE(m_out.str().starts_with("only on the server: old.png\n")) << m_out.str();
  m_arguments.deleteExtras = true;
  EXPECT_EQ(Run(), kPublished);
  EXPECT_EQ(m_out.str().find("old.png"), std::string::npos);
  EXPECT_FALSE(FileExists(m_folder.Path("web/a_map/old.png")));
}

TEST_F(PublishCommandTest, TellsWhatFailed) {
  m_arguments.folders.push_back(m_folder.Path("missing"));
  WriteFile(m_folder.Path("a map/18/.mosaicon-tiles"), "");
  EXPECT_EQ(Run(), kPublishedInPart);
  EXPECT_NE(m_problems.str().find("mosaicon-batch: 18: the map is not finished; make it again\n"),
            std::string::npos);
  EXPECT_NE(m_problems.str().find("mosaicon-batch: FAILED " + m_arguments.address.Below("missing").Text()),
            std::string::npos)
      << m_problems.str();
}

TEST_F(PublishCommandTest, PublishesNoTwoFoldersUnderOneName) {
  std::filesystem::create_directories(m_folder.Path("other/A_map"));
  WriteFile(m_folder.Path("other/A_map/leaflet.html"), "another");
  m_arguments.folders.push_back(m_folder.Path("other/A_map"));
  EXPECT_EQ(Run(), kPublishedInPart);
  EXPECT_NE(m_problems.str().find("another folder was published under this name"), std::string::npos);
  EXPECT_EQ(Published("leaflet.html"), "page");
}

TEST_F(PublishCommandTest, EndsWhenItIsInterrupted) {
  m_isInterrupted = true;
  EXPECT_EQ(Run(), kPublishingAborted);
}

}  // namespace
