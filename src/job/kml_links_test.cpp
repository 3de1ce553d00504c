#include "job/kml_links.h"

#include <gtest/gtest.h>
#ifdef _WIN32
#include <io.h>
#include <sys/stat.h>
#else
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "support/file_size_limit.h"
#endif

#include "support/temporary_folder.h"

namespace {

#ifdef _WIN32
// Text mode: every line feed that is written becomes a pair.
std::string LineEnds(std::string text) {
  for (size_t i = text.find('\n'); i != std::string::npos; i = text.find('\n', i + 2))
    text.insert(i, 1, '\r');
  return text;
}
#else
std::string LineEnds(std::string text) {
  return text;
}
#endif

class KmlLinks : public testing::Test {
 protected:
  // Rewrites a file that holds text, and returns what it holds then.
  std::string Rewrite(const std::string& text, const std::string& baseUrl = "http://host/maps",
                      const std::string& subFolder = "") {
    WriteFile(m_folder.Path("web.kml"), text);
    EXPECT_EQ(RewriteKmlLinks(m_folder.Path("web.kml"), baseUrl, subFolder), 1);
    EXPECT_FALSE(FileExists(m_folder.Path("temp_web.kml")));
    return ReadFile(m_folder.Path("web.kml"));
  }

  TemporaryFolder m_folder;
};

constexpr char kLink[] = "<Link>\n  <href>0/0/0.kml</href>\n</Link>\n</kml>";

TEST_F(KmlLinks, PutsTheUrlBeforeTheTarget) {
  EXPECT_EQ(Rewrite(kLink), LineEnds("<Link>\n  <href>http://host/maps/0/0/0.kml</href>\n</Link>\n</kml>"));
}

TEST_F(KmlLinks, PutsTheSubFolderBetween) {
  EXPECT_EQ(Rewrite(kLink, "http://host/maps", "/tile_0"),
            LineEnds("<Link>\n  <href>http://host/maps/tile_0/0/0/0.kml</href>\n</Link>\n</kml>"));
}

TEST_F(KmlLinks, DropsOneFinalSlashOfTheUrl) {
  EXPECT_EQ(Rewrite(kLink, "http://host/maps/"), Rewrite(kLink, "http://host/maps"));
  EXPECT_EQ(Rewrite("<Link>\n<href>a\n</Link>x", "http://host//"),
            LineEnds("<Link>\n<href>http://host//a\n</Link>x"));
}

TEST_F(KmlLinks, LeavesLinksOutsideOfLinkElementsAlone) {
  const std::string text = "<Icon>\n<href>0.png</href>\n</Icon>\n<Link>\n</Link>\n<href>1.png</href>";
  EXPECT_EQ(Rewrite(text), LineEnds(text));
}

TEST_F(KmlLinks, RewritesOnlyTheFirstLinkOfALine) {
  EXPECT_EQ(Rewrite("<Link>\n<href>a</href><href>b</href>\n</Link>x", "u"),
            LineEnds("<Link>\n<href>u/a</href><href>b</href>\n</Link>x"));
}

TEST_F(KmlLinks, TakesALineWithAWholeLinkForItsBeginning) {
  EXPECT_EQ(Rewrite("<Link><href>a</href></Link>\n<href>b</href>\n<x/>", "u"),
            LineEnds("<Link><href>a</href></Link>\n<href>u/b</href>\n<x/>"));
}

TEST_F(KmlLinks, TakesALineThatClosesALinkForItsEnd) {
  EXPECT_EQ(Rewrite("<Link>\n<href>a</href></Link>\n<href>b</href>\nx", "u"),
            LineEnds("<Link>\n<href>a</href></Link>\n<href>b</href>\nx"));
  // Inside a link a second "<Link>" means nothing.
  EXPECT_EQ(Rewrite("<Link>\n<Link><href>a</href>\nx", "u"), LineEnds("<Link>\n<Link><href>u/a</href>\nx"));
}

TEST_F(KmlLinks, KeepsLastLineTwiceAfterFinalLineBreak) {
  EXPECT_EQ(Rewrite("<kml>\n</kml>\n"), LineEnds("<kml>\n</kml>\n</kml>\n"));
  EXPECT_EQ(Rewrite("<kml>\n</kml>"), LineEnds("<kml>\n</kml>"));
  EXPECT_EQ(Rewrite("\n"), LineEnds("\n\n"));
  // Even a rewritten line: it is read once and seen twice.
  EXPECT_EQ(Rewrite("<Link>\n<href>a\n", "u"), LineEnds("<Link>\n<href>u/a\n<href>u/a\n"));
}

TEST_F(KmlLinks, LeavesAnEmptyFileEmpty) {
  EXPECT_EQ(Rewrite(""), "");
}

TEST_F(KmlLinks, HandlesLongLinesInPieces) {
  // The link lies in the second piece of its line, where the first piece holds no line end.
  const std::string padding(4090, ' ');
  EXPECT_EQ(Rewrite("<Link>\n" + padding + "<href>a</href>\n</Link>x", "u"),
            LineEnds("<Link>\n" + padding + "<href>a</href>\n</Link>x"))
      << "the tag is cut by the piece's end";
  const std::string more(4095, ' ');
  EXPECT_EQ(Rewrite("<Link>\n" + more + "<href>a</href>\n</Link>x", "u"),
            LineEnds("<Link>\n" + more + "<href>u/a</href>\n</Link>x"));
}

TEST_F(KmlLinks, WritesLinksOfAnyLengthInFull) {
  const std::string url = "http://host/" + std::string(5000, 'x');
  EXPECT_EQ(Rewrite("<Link>\n<href>a</href>\n</Link>x", url),
            LineEnds("<Link>\n<href>" + url + "/a</href>\n</Link>x"));
}

TEST_F(KmlLinks, CopiesBytesWithoutConversion) {
  EXPECT_EQ(Rewrite("<name>\xE0\xC3\xA0\xFF</name>"), "<name>\xE0\xC3\xA0\xFF</name>");
}

TEST_F(KmlLinks, RefusesEmptyPathOrUrl) {
  WriteFile(m_folder.Path("web.kml"), kLink);
  EXPECT_EQ(RewriteKmlLinks("", "u", ""), 0);
  EXPECT_EQ(RewriteKmlLinks(m_folder.Path("web.kml"), "", ""), 0);
  EXPECT_EQ(ReadFile(m_folder.Path("web.kml")), kLink);
}

TEST_F(KmlLinks, LeavesTheTemporaryFileWhenTheInputIsMissing) {
  EXPECT_EQ(RewriteKmlLinks(m_folder.Path("none.kml"), "u", ""), 0);
  EXPECT_TRUE(FileExists(m_folder.Path("temp_web.kml")));
  EXPECT_FALSE(FileExists(m_folder.Path("none.kml")));
}

TEST_F(KmlLinks, CountsTheTemporaryFilesThatAreThere) {
  WriteFile(m_folder.Path("temp_web.kml"), "the user's own");
  for (const char* name : {"temp_web2.kml", "temp_web3.kml"}) {
    EXPECT_EQ(RewriteKmlLinks(m_folder.Path("none.kml"), "u", ""), 0);
    EXPECT_TRUE(FileExists(m_folder.Path(name))) << name;
  }
}

TEST_F(KmlLinks, RefusesWhenTheTemporaryFileCannotBeMade) {
  EXPECT_EQ(RewriteKmlLinks(m_folder.Path("no folder") + "/web.kml", "u", ""), 0);
}

TEST_F(KmlLinks, SparesAFileOfTheTemporaryName) {
  const std::string own = m_folder.Path("temp_web.kml");
  const std::string another = m_folder.Path("temp_web2.kml");
  WriteFile(own, "the user's own");
  WriteFile(another, "and another");
  WriteFile(m_folder.Path("web.kml"), kLink);
  EXPECT_EQ(RewriteKmlLinks(m_folder.Path("web.kml"), "u", ""), 1);
  EXPECT_NE(ReadFile(m_folder.Path("web.kml")).find("<href>u/0/0/0.kml"), std::string::npos);
  EXPECT_EQ(ReadFile(own), "the user's own");
  EXPECT_EQ(ReadFile(another), "and another");
  EXPECT_FALSE(FileExists(m_folder.Path("temp_web3.kml")));
  // And when it is this file that is rewritten.
  WriteFile(own, kLink);
  EXPECT_EQ(RewriteKmlLinks(own, "u", ""), 1);
  EXPECT_NE(ReadFile(own).find("<href>u/0/0/0.kml"), std::string::npos);
}

#ifdef _WIN32
TEST_F(KmlLinks, ReadsAndWritesPairsAtLineEnds) {
  const std::string text = LineEnds(kLink);
  EXPECT_EQ(Rewrite(text, "u"), LineEnds("<Link>\n  <href>u/0/0/0.kml</href>\n</Link>\n</kml>"));
}

TEST_F(KmlLinks, LeavesAFileThatMayNotBeReplaced) {
  const std::string path = m_folder.Path("web.kml");
  WriteFile(path, kLink);
  ASSERT_EQ(_chmod(path.c_str(), _S_IREAD), 0);
  EXPECT_EQ(RewriteKmlLinks(path, "u", ""), 0);
  EXPECT_EQ(ReadFile(path), kLink);
  EXPECT_FALSE(FileExists(m_folder.Path("temp_web.kml")));
  _chmod(path.c_str(), _S_IREAD | _S_IWRITE);
}
#else
TEST_F(KmlLinks, KeepsTheFileWhenTheDiskIsFull) {
  const std::string path = m_folder.Path("web.kml");
  WriteFile(path, std::string(100000, 'x'));
  {
    const FileSizeLimit limit(50000);
    EXPECT_EQ(RewriteKmlLinks(path, "u", ""), 0);
  }
  EXPECT_EQ(ReadFile(path), std::string(100000, 'x'));
  EXPECT_FALSE(FileExists(m_folder.Path("temp_web.kml")));
}

TEST_F(KmlLinks, LeavesNothingOpen) {
  const auto countOpenFiles = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  WriteFile(m_folder.Path("temp_web.kml"), "the user's own");
  WriteFile(m_folder.Path("web.kml"), kLink);
  const auto before = countOpenFiles();
  EXPECT_EQ(RewriteKmlLinks(m_folder.Path("web.kml"), "u", ""), 1);
  EXPECT_EQ(RewriteKmlLinks(m_folder.Path("none.kml"), "u", ""), 0);
  EXPECT_EQ(countOpenFiles(), before);
}

TEST_F(KmlLinks, LeavesWhatCannotBeRead) {
  // A folder opens, and the first read fails; so does the memory of a process at its beginning.
  const std::string folder = m_folder.Path("web.kml");
  ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
  const std::string link = m_folder.Path("link.kml");
  ASSERT_EQ(symlink("/proc/self/mem", link.c_str()), 0);
  for (const std::string& path : {folder, link}) {
    EXPECT_EQ(RewriteKmlLinks(path, "u", ""), 0);
    EXPECT_TRUE(FileExists(path));
    EXPECT_FALSE(FileExists(m_folder.Path("temp_web.kml")));
  }
  struct stat status = {};
  EXPECT_TRUE(lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode));
  EXPECT_TRUE(lstat(link.c_str(), &status) == 0 && S_ISLNK(status.st_mode));
}

// Reading fails when a signal comes while it waits for more.
TEST_F(KmlLinks, LeavesWhatCannotBeReadToItsEnd) {
  struct sigaction handled = {};
  handled.sa_handler = [](int) {};
  struct sigaction before = {};
  ASSERT_EQ(sigaction(SIGUSR1, &handled, &before), 0);
  const std::string path = m_folder.Path("web.kml");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::fstream pipe(path);  // to read and to write: it has no end, and whoever opens it need not wait
  pipe << kLink << std::flush;
  std::atomic<bool> isRewritten = false;
  std::thread interrupter([&isRewritten, reader = pthread_self()] {
    while (!isRewritten) {
      pthread_kill(reader, SIGUSR1);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
  EXPECT_EQ(RewriteKmlLinks(path, "u", ""), 0);
  isRewritten = true;
  interrupter.join();
  sigaction(SIGUSR1, &before, nullptr);
  EXPECT_TRUE(std::filesystem::is_fifo(path));
  EXPECT_FALSE(FileExists(m_folder.Path("temp_web.kml")));
}
#endif

}  // namespace
