// Compares our path splitter with the C run-time's.

#include <gtest/gtest.h>
#include <stdlib.h>

#include "kvtools/testing/split_path_cases.h"

namespace {

TEST(SplitPath, AgreesWithTheCRunTime) {
  for (const SplitPathCase& each : SplitPathCases()) {
    char drive[_MAX_DRIVE];
    char directory[_MAX_DIR];
    char name[_MAX_FNAME];
    char extension[_MAX_EXT];
    _splitpath(each.path, drive, directory, name, extension);
    const PathParts parts = SplitPath(each.path);
    EXPECT_EQ(parts.drive, drive) << each.path;
    EXPECT_EQ(parts.directory, directory) << each.path;
    EXPECT_EQ(parts.name, name) << each.path;
    EXPECT_EQ(parts.extension, extension) << each.path;

    char joined[_MAX_PATH];
    _makepath(joined, drive, directory, name, extension);
    EXPECT_EQ(JoinPath(drive, directory, name, extension), joined) << each.path;
  }
}

}  // namespace
