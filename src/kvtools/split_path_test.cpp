#include "kvtools/split_path.h"

#include <gtest/gtest.h>

#include "kvtools/testing/split_path_cases.h"

namespace {

TEST(SplitPath, TakesPathsApart) {
  for (const SplitPathCase& each : SplitPathCases()) {
    const PathParts parts = SplitPath(each.path);
    EXPECT_EQ(parts.drive, each.parts.drive) << each.path;
    EXPECT_EQ(parts.directory, each.parts.directory) << each.path;
    EXPECT_EQ(parts.name, each.parts.name) << each.path;
    EXPECT_EQ(parts.extension, each.parts.extension) << each.path;
    EXPECT_EQ(JoinPath(parts.drive, parts.directory, parts.name, parts.extension), each.path);
  }
}

TEST(JoinPath, AddsWhatIsMissingBetweenTheParts) {
  EXPECT_EQ(JoinPath("d", "maps", "a", "tif"), "d:maps\\a.tif");
  EXPECT_EQ(JoinPath("", "\\maps/", "a", ".tif"), "\\maps/a.tif");
  EXPECT_EQ(JoinPath("", "", "", "jpg"), ".jpg");
  EXPECT_EQ(JoinPath("", "", "a", ""), "a");
}

TEST(SplitPath, KeepsPathsOfAnyLength) {
  const std::string folder = "d:\\" + std::string(5000, 'x') + "\\";
  EXPECT_EQ(SplitPath(folder + "a.tif").directory.size(), 5002U);
}

}  // namespace
