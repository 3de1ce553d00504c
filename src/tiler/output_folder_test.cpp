#include "tiler/output_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/file_size_limit.h"
#include "support/temporary_folder.h"
#include "tiler/tiler_error.h"

namespace tiler {
namespace {

namespace fs = std::filesystem;

class Output : public testing::Test {
 protected:
  // Of what throws.
  template <typename Action>
  static std::string Reason(Action action) {
    try {
      action();
    } catch (const TilerError& error) {
      return error.what();
    }
    return "";
  }
  std::string InFolder(const std::string& name) const { return m_folder.Path("wiesen é/" + name); }

  TemporaryFolder m_folder;
  OutputFolder m_output{m_folder.Path("wiesen é")};
};

TEST_F(Output, HasItsLastComponentAsName) {
  EXPECT_EQ(m_output.Name(), "wiesen é");
}

TEST_F(Output, HoldsTilesByLevelColumnAndRow) {
  m_output.CreateColumn(7, 3);
  m_output.WriteTile({7, 3, 12}, "png", std::string_view("\0pixels", 7));
  m_output.WriteTile({7, 3, 12}, "kml", "text");
  m_output.WritePage("doc.kml", "document");
  EXPECT_EQ(ReadFile(InFolder("7/3/12.png")), std::string("\0pixels", 7));
  EXPECT_EQ(ReadFile(InFolder("7/3/12.kml")), "text");
  EXPECT_EQ(ReadFile(InFolder("doc.kml")), "document");
  m_output.WritePage("doc.kml", "new");
  EXPECT_EQ(ReadFile(InFolder("doc.kml")), "new");
}

TEST_F(Output, RemovesPartialFilesWhereItWrites) {
  for (const char* folder : {"7/3", "mine/3", "7/mine"}) fs::create_directories(InFolder(folder));
  const std::string gone[] = {"7/3/1.png.~mos", "doc.kml.~mos"};
  const std::string kept[] = {"7/3/1.png", "mine/3/1.png.~mos", "7/mine/1.png.~mos", "7/1.png.~mos"};
  for (const std::string& name : gone) WriteFile(InFolder(name), "x");
  for (const std::string& name : kept) WriteFile(InFolder(name), "x");
  m_output.RemovePartialFiles();
  for (const std::string& name : gone) EXPECT_FALSE(FileExists(InFolder(name))) << name;
  for (const std::string& name : kept) EXPECT_TRUE(FileExists(InFolder(name))) << name;
}

TEST_F(Output, RemovesPartialFilesOfSomeTilesAlone) {
  for (const char* folder : {"7/3", "7/4"}) fs::create_directories(InFolder(folder));
  const std::string gone[] = {"7/3/12.png.~mos", "7/3/12.kml.~mos"};
  const std::string kept[] = {"7/3/12.png", "7/3/11.png.~mos", "7/4/12.png.~mos", "7/3/x.png.~mos",
                              "doc.kml.~mos"};
  for (const std::string& name : gone) WriteFile(InFolder(name), "x");
  for (const std::string& name : kept) WriteFile(InFolder(name), "x");
  m_output.RemovePartialTiles([](const TileId& tile) { return tile == TileId{7, 3, 12}; });
  for (const std::string& name : gone) EXPECT_FALSE(FileExists(InFolder(name))) << name;
  for (const std::string& name : kept) EXPECT_TRUE(FileExists(InFolder(name))) << name;
}

TEST_F(Output, FindsNothingToRemoveWhereNothingIs) {
  m_output.RemovePartialFiles();
  m_output.RemoveOldDocument();
  WriteFile(m_folder.Path("wiesen é"), "a file");
  m_output.RemovePartialFiles();
  m_output.RemoveOldDocument();
  EXPECT_TRUE(FileExists(m_folder.Path("wiesen é")));
}

TEST_F(Output, RemovesTheOldDocument) {
  m_output.Create();
  m_output.WritePage("doc.kml", "old");
  m_output.RemoveOldDocument();
  EXPECT_FALSE(FileExists(InFolder("doc.kml")));
}

TEST_F(Output, SaysWhatStandsInTheWay) {
  WriteFile(m_folder.Path("wiesen é"), "a file");
  EXPECT_EQ(Reason([&] { m_output.Create(); }), m_folder.Path("wiesen é") + ": File exists");
  fs::remove(m_folder.Path("wiesen é"));
  fs::create_directories(InFolder("7/3/1.png"));
  EXPECT_EQ(Reason([&] {
              m_output.WriteTile({7, 3, 1}, "png", "x");
            }),
            "could not write " + InFolder("7/3/1.png") + ": Is a directory");
  EXPECT_FALSE(FileExists(InFolder("7/3/1.png.~mos")));
  EXPECT_EQ(Reason([&] {
              m_output.WriteTile({7, 4, 1}, "png", "x");
            }),
            "could not write " + InFolder("7/4/1.png") + ": No such file or directory");
}

TEST_F(Output, KeepsTheOldFileWhenTheNewOneDoesNotFit) {
  m_output.Create();
  m_output.WritePage("doc.kml", "old");
  const std::string reason = [&] {
    const FileSizeLimit limit(1000);
    return Reason([&] { m_output.WritePage("doc.kml", std::string(5000, 'x')); });
  }();
  EXPECT_EQ(reason, "could not write " + InFolder("doc.kml") + ": File too large");
  EXPECT_EQ(ReadFile(InFolder("doc.kml")), "old");
  EXPECT_FALSE(FileExists(InFolder("doc.kml.~mos")));
}

}  // namespace
}  // namespace tiler
