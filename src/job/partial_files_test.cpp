#include "job/partial_files.h"

#include <gtest/gtest.h>

#include "files/testing/fake_file_system.h"
#include "kvtools/testing/told_time.h"

namespace {

class PartialFiles : public testing::Test {
 protected:
  std::vector<std::string> m_changes;
  FakeFileSystem m_files{&m_changes};
};

TEST_F(PartialFiles, AreRemovedWhereTilesAndPagesAre) {
  for (const char* name :
       {"doc.kml.~mos", "doc.kml", "12\\x.~mos", "12\\7\\9.png.~mos", "12\\7\\9.kml", "9\\0\\3.png.~mos"}) {
    m_files.Put(std::string("d:\\out\\") + name);
  }
  RemovePartialFiles("d:\\out", m_files);
  EXPECT_EQ(m_changes,
            (std::vector<std::string>{"delete d:\\out\\doc.kml.~mos", "delete d:\\out\\12\\7\\9.png.~mos",
                                      "delete d:\\out\\9\\0\\3.png.~mos"}));
}

TEST_F(PartialFiles, OfOthersAreLeft) {
  m_files.Put("d:\\out\\mine\\a.~mos");
  m_files.Put("d:\\out\\12a\\7\\9.png.~mos");
  m_files.Put("d:\\out\\12\\7\\6\\9.png.~mos");
  m_files.PutFolder("d:\\out\\folder.~mos");
  RemovePartialFiles("d:\\out", m_files);
  EXPECT_TRUE(m_changes.empty());
}

// Refuses to delete a few times, as the system does while an ending process holds a file.
class HeldFiles : public FakeFileSystem {
 public:
  bool Delete(const std::string& path) override { return refusals-- <= 0 && FakeFileSystem::Delete(path); }
  int refusals = 0;
};

TEST_F(PartialFiles, AreTriedAgainWhileTheyAreHeld) {
  ToldTime time;
  HeldFiles files;
  for (const char* path : {"d:\\out\\a.~mos", "d:\\out\\b.~mos"}) files.Put(path);
  files.refusals = 3;
  RemovePartialFiles("d:\\out", files);
  EXPECT_TRUE(FindFiles(files, "d:\\out\\*").empty());
}

// Another was quicker.
class VanishingFiles : public FakeFileSystem {
 public:
  bool Delete(const std::string& path) override {
    ++attempts;
    FakeFileSystem::Delete(path);
    return false;
  }
  int attempts = 0;
};

TEST_F(PartialFiles, ThatAreGoneAreNotTriedAgain) {
  VanishingFiles files;
  files.Put("d:\\out\\a.~mos");
  RemovePartialFiles("d:\\out", files);
  EXPECT_EQ(files.attempts, 1);
}

TEST_F(PartialFiles, ThatNobodyMayDeleteEndTheAttempt) {
  ToldTime time;
  const auto begin = time.Now();
  HeldFiles files;
  files.Put("d:\\out\\a.~mos");
  files.refusals = 1000;
  RemovePartialFiles("d:\\out", files);
  EXPECT_EQ(time.Now() - begin, std::chrono::seconds(2));
  EXPECT_TRUE(files.Exists("d:\\out\\a.~mos"));
  EXPECT_EQ(files.refusals, 1000 - 20) << "for two seconds, ten times in each";
}

}  // namespace
