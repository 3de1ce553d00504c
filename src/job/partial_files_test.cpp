#include "job/partial_files.h"

#include <gtest/gtest.h>

#include "support/fakes.h"

namespace {

class PartialFiles : public testing::Test {
 protected:
  // Puts a file or a folder into a folder, where both kinds of search find it.
  void Put(const std::string& folder, const std::string& name, bool isDirectory = false) {
    const FoundFile found{folder + "\\" + name, name, isDirectory};
    m_files.matches[folder + "\\*"].push_back(found);
    if (name.size() > 5 && name.substr(name.size() - 5) == ".~mos") {
      m_files.matches[folder + "\\*.~mos"].push_back(found);
    }
    m_files.paths.insert(found.path);
  }

  Events m_events;
  FakeFiles m_files{m_events};
};

TEST_F(PartialFiles, AreRemovedWhereTilesAndPagesAre) {
  Put("d:\\out", "doc.kml.~mos");
  Put("d:\\out", "doc.kml");
  Put("d:\\out", "12", true);
  Put("d:\\out\\12", "x.~mos");
  Put("d:\\out\\12", "7", true);
  Put("d:\\out\\12\\7", "9.png.~mos");
  Put("d:\\out\\12\\7", "9.kml");
  RemovePartialFiles("d:\\out", m_files);
  EXPECT_EQ(m_events, (Events{"delete d:\\out\\doc.kml.~mos", "delete d:\\out\\12\\7\\9.png.~mos"}));
  EXPECT_EQ(m_files.paths.count("d:\\out\\doc.kml"), 1U);
}

TEST_F(PartialFiles, OfOthersAreLeft) {
  Put("d:\\out", "mine", true);
  Put("d:\\out\\mine", "a.~mos");
  Put("d:\\out", "12a", true);
  Put("d:\\out\\12a", "7", true);
  Put("d:\\out\\12a\\7", "9.png.~mos");
  Put("d:\\out", "folder.~mos", true);
  RemovePartialFiles("d:\\out", m_files);
  EXPECT_TRUE(m_events.empty());
}

// Refuses to delete a few times, as the system does while an ending process holds a file.
class HeldFiles : public FakeFiles {
 public:
  using FakeFiles::FakeFiles;
  bool Delete(const std::string& path) override { return refusals-- <= 0 && FakeFiles::Delete(path); }
  int refusals = 0;
};

TEST_F(PartialFiles, AreTriedAgainWhileTheyAreHeld) {
  HeldFiles files(m_events);
  files.paths = {"d:\\out\\a.~mos", "d:\\out\\b.~mos"};
  files.matches["d:\\out\\*.~mos"] = {{"d:\\out\\a.~mos", "a.~mos", false},
                                      {"d:\\out\\b.~mos", "b.~mos", false}};
  files.refusals = 3;
  RemovePartialFiles("d:\\out", files);
  EXPECT_TRUE(files.paths.empty());
}

TEST_F(PartialFiles, ThatNobodyMayDeleteEndTheAttempt) {
  HeldFiles files(m_events);
  files.paths = {"d:\\out\\a.~mos"};
  files.matches["d:\\out\\*.~mos"] = {{"d:\\out\\a.~mos", "a.~mos", false}};
  files.refusals = 1000;
  RemovePartialFiles("d:\\out", files);
  EXPECT_EQ(files.paths.size(), 1U);
  EXPECT_LT(files.refusals, 1000 - 1) << "tried once only";
}

}  // namespace
