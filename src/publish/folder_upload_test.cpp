#include "publish/folder_upload.h"

#include <gtest/gtest.h>

#include "files/testing/fake_file_system.h"
#include "net/error_codes.h"
#include "publish/testing/fake_publish_host.h"
#include "publish/testing/fake_remote_server.h"

namespace {

using Lines = std::vector<std::string>;

class FolderUploadTest : public testing::Test {
 protected:
  void SetUp() override {
    m_server.readLocalFile = [this](const std::string& path) -> std::optional<std::string> {
      if (path == m_unreadable) return {};
      return "bytes of " + path;
    };
  }
  // Puts files and, with a backslash at their end, folders into a folder, in this order.
  void Add(const std::string& folder, const Lines& names) {
    m_local.PutFolder(folder);
    for (const std::string& name : names) {
      if (name.ends_with('\\')) {
        m_local.PutFolder(folder + '\\' + name);
      } else {
        m_local.Put(folder + '\\' + name);
        ++m_nFiles;
      }
    }
  }
  int Upload(const std::string& path) {
    return FolderUpload(m_server, m_local, m_host, m_nFiles).Upload(path);
  }

  FakeRemoteServer m_server;
  FakeFileSystem m_local;
  int m_nFiles = 0;
  FakePublishHost m_host;
  std::string m_unreadable;
};

TEST_F(FolderUploadTest, CopiesATree) {
  Add("d:\\out\\my ortho", {"a b.png", "0 1\\", "z"});
  Add("d:\\out\\my ortho\\0 1", {"c d.kml"});
  EXPECT_EQ(Upload("d:\\out\\my ortho"), 3);
  EXPECT_EQ(m_server.commands, (Lines{"MKD my_ortho", "CWD my_ortho", "STOR a b.png", "MKD 0_1", "CWD 0_1",
                                      "STOR c d.kml", "CDUP", "STOR z", "CDUP"}));
  EXPECT_EQ(m_server.Content("/my_ortho/0_1/c d.kml"), "bytes of d:\\out\\my ortho\\0 1\\c d.kml");
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(FolderUploadTest, TellsItsProgressAfterEachFile) {
  Add("d:\\x", {"a", "b\\", "d"});
  Add("d:\\x\\b", {"c"});
  Upload("d:\\x");
  EXPECT_EQ(m_host.positions, (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(m_host.captions, (Lines{"a - 1/3", "c - 2/3", "d - 3/3"}));
  EXPECT_EQ(m_host.pumps, 3);
}

TEST_F(FolderUploadTest, MakesAnEmptyFolder) {
  Add("d:\\x", {});
  EXPECT_EQ(Upload("d:\\x"), 0);
  EXPECT_EQ(m_server.commands, (Lines{"MKD x", "CWD x", "CDUP"}));
}

TEST_F(FolderUploadTest, GoesOnAfterAFileThatFails) {
  Add("d:\\x", {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"});
  m_server.Fail("STOR 4", 51);
  EXPECT_EQ(Upload("d:\\x"), 9);
  EXPECT_EQ(m_host.positions.back(), 10);
  EXPECT_EQ(m_host.captions.back(), "9 - 10/10");
}

TEST_F(FolderUploadTest, CountsAFileThatCannotBeRead) {
  Add("d:\\x", {"a", "b"});
  m_unreadable = "d:\\x\\a";
  EXPECT_EQ(Upload("d:\\x"), 1);
  EXPECT_EQ(m_host.positions, (std::vector<int>{1, 2}));
}

TEST_F(FolderUploadTest, LeavesOutAFolderThatCannotBeMade) {
  Add("d:\\x", {"a\\", "b"});
  Add("d:\\x\\a", {"c", "e\\"});
  Add("d:\\x\\a\\e", {"f"});
  m_server.Fail("MKD a", 10);
  EXPECT_EQ(Upload("d:\\x"), 1);
  EXPECT_EQ(m_server.commands, (Lines{"MKD x", "CWD x", "MKD a", "STOR b", "CDUP"}));
  EXPECT_EQ(m_host.positions, std::vector<int>{1});
}

TEST_F(FolderUploadTest, PutsNothingBesideAFolderThatCannotBeEntered) {
  Add("d:\\x", {"a\\", "b"});
  Add("d:\\x\\a", {"c"});
  m_server.Fail("CWD a", 10);
  EXPECT_EQ(Upload("d:\\x"), 1);
  EXPECT_EQ(m_server.commands, (Lines{"MKD x", "CWD x", "MKD a", "CWD a", "STOR b", "CDUP"}));
}

TEST_F(FolderUploadTest, PutsNothingIntoTheWrongFolderWhenItCannotGoBack) {
  Add("d:\\x", {"a\\", "b", "c\\"});
  Add("d:\\x\\a", {"d"});
  Add("d:\\x\\c", {"e"});
  m_server.Fail("CDUP /x/a", 10);
  EXPECT_EQ(Upload("d:\\x"), 1);
  EXPECT_EQ(m_server.commands, (Lines{"MKD x", "CWD x", "MKD a", "CWD a", "STOR d", "CDUP"}));
}

TEST_F(FolderUploadTest, StopsAtTheNextEntryAfterAnAbort) {
  Add("d:\\x", {"a\\", "d", "e\\"});
  Add("d:\\x\\a", {"b", "c"});
  Add("d:\\x\\e", {"f"});
  m_host.onPump = [this] { m_host.aborted = true; };
  EXPECT_EQ(Upload("d:\\x"), 1);
  EXPECT_EQ(m_server.commands, (Lines{"MKD x", "CWD x", "MKD a", "CWD a", "STOR b", "CDUP", "CDUP"}));
  EXPECT_EQ(m_server.CurrentFolder(), "/");
}

TEST_F(FolderUploadTest, DoesNothingWhenAbortedBefore) {
  Add("d:\\x", {"a"});
  m_host.aborted = true;
  EXPECT_EQ(Upload("d:\\x"), 0);
  EXPECT_TRUE(m_server.commands.empty());
}

// After every number of commands.
TEST_F(FolderUploadTest, EndsWhenTheConnectionIsLost) {
  Add("d:\\x", {"a\\", "d", "e\\"});
  Add("d:\\x\\a", {"b", "c"});
  Add("d:\\x\\e", {"f"});
  const int expected[] = {0, 0, 0, 0, 0, 1, 2, 2, 3, 3, 3, 4, 4};
  for (int commands = 0; commands <= 12; ++commands) {
    FakeRemoteServer server;
    server.readLocalFile = m_server.readLocalFile;
    server.DisconnectAfter(commands);
    EXPECT_EQ(FolderUpload(server, m_local, m_host, 4).Upload("d:\\x"), expected[commands])
        << commands << " commands";
  }
}

TEST_F(FolderUploadTest, RefusesPathsWithoutAName) {
  for (const char* path : {"", "C:", "C:\\", "x"}) EXPECT_EQ(Upload(path), 0) << path;
  EXPECT_TRUE(m_server.commands.empty());
}

TEST(RemoteNameOfFolder, IsTheLastComponentWithoutBlanks) {
  EXPECT_EQ(RemoteNameOfFolder("d:\\out\\my ortho"), "my_ortho");
  EXPECT_EQ(RemoteNameOfFolder("d:\\x"), "x");
  EXPECT_EQ(RemoteNameOfFolder("\\\\server\\share"), "share");
  for (const char* path : {"", "C:", "C:\\", "x", "d:\\x\\"}) EXPECT_EQ(RemoteNameOfFolder(path), "") << path;
}

}  // namespace
