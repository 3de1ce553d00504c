#include "mirror/folder_store.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "files/path_text.h"
#include "mirror/testing/publication_fixture.h"

namespace mirror {

namespace {

namespace fs = std::filesystem;
using Kind = RemoteJob::Kind;

// By its path: its name may be none for the functions that take narrow text.
std::string BytesOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class FolderStoreTest : public PublicationFixture {
 protected:
  fs::path Target() const { return fs::path(m_folder.Path("web")) / files::PathOf("wiesen ä"); }

  PublicationReport PublishToFolder(const PublicationOptions& options = {}) {
    FolderStore store(Target());
    Manifest manifest;
    EXPECT_EQ(manifest.Open(Manifests(), "file:///web"), "");
    return Publication(store, manifest, m_clock, options).Run(Map());
  }
  FakeStore::Tree Published() const {
    FakeStore::Tree files;
    for (const auto& entry : fs::recursive_directory_iterator(Target())) {
      const std::string name = files::Utf8Of(entry.path().lexically_relative(Target()));
      std::string path = name;
      std::replace(path.begin(), path.end(), '\\', '/');
      files[path] = entry.is_directory() ? FakeStore::Entry{EntryKind::kFolder, ""}
                                         : FakeStore::Entry{EntryKind::kFile, BytesOf(entry.path())};
    }
    return files;
  }

  Outcome Do(const RemoteJob& job) {
    FolderStore store(Target());
    store.Start(7, job);
    const auto finished = store.Wait(std::chrono::milliseconds(0));
    EXPECT_EQ(finished.size(), 1U);
    EXPECT_EQ(finished[0].id, 7U);
    return finished[0].outcome;
  }
};

TEST_F(FolderStoreTest, IsPublishedTo) {
  Write(".htaccess", "x");
  EXPECT_EQ(PublishToFolder().result, PublicationResult::kPublished);
  EXPECT_EQ(Published(), LocalFiles());
  EXPECT_EQ(PublishToFolder().filesSent, 0U);
  MakeMap("2");
  Remove("18/1/3.png");
  const PublicationReport report = PublishToFolder({.deleteExtras = true, .patience = {}});
  EXPECT_EQ(report.result, PublicationResult::kPublished);
  EXPECT_EQ(report.filesDeleted, 1U);
  EXPECT_EQ(Published(), LocalFiles());
}

TEST_F(FolderStoreTest, SaysWhatIsWrong) {
  WriteFile(m_folder.Path("file"), "12345");
  EXPECT_EQ(Do({.kind = Kind::kList, .path = "", .target = "", .source = {}}).fault, Fault::kMissing);
  EXPECT_EQ(Do({.kind = Kind::kMakeFolder, .path = "", .target = "", .source = {}}).fault, Fault::kNone);
  EXPECT_EQ(Do({.kind = Kind::kDelete, .path = "a", .target = "", .source = {}}).fault, Fault::kMissing);
  EXPECT_EQ(Do({.kind = Kind::kRename, .path = "a", .target = "b", .source = {}}).fault, Fault::kMissing);
  const fs::path file = m_folder.Path("file");
  EXPECT_EQ(Do({.kind = Kind::kSend, .path = "no/a", .target = "", .source = file, .size = 5}).fault,
            Fault::kMissing);
  EXPECT_EQ(Do({.kind = Kind::kSend, .path = "a", .target = "", .source = file, .size = 6}).fault,
            Fault::kLocal);
  EXPECT_EQ(Do({.kind = Kind::kSend, .path = "a", .target = "", .source = file / "no", .size = 6}).fault,
            Fault::kLocal);
  EXPECT_EQ(Do({.kind = Kind::kSend, .path = "a", .target = "", .source = file, .size = 5}).fault,
            Fault::kNone);
  EXPECT_NE(Do({.kind = Kind::kMakeFolder, .path = "a", .target = "", .source = {}}).fault, Fault::kNone);
}

#ifndef _WIN32
TEST_F(FolderStoreTest, WritesThroughNoLink) {
  fs::create_directories(Target());
  WriteFile(m_folder.Path("secret"), "secret");
  fs::create_symlink(m_folder.Path("secret"), Target() / "Valley.jpg");
  EXPECT_EQ(PublishToFolder().result, PublicationResult::kPublished);
  EXPECT_EQ(ReadFile(m_folder.Path("secret")), "secret");
  EXPECT_EQ(Published(), LocalFiles());
}
#endif

}  // namespace

}  // namespace mirror
