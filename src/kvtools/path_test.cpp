#include <gtest/gtest.h>

#include "kvtools/kvtools.h"
#include "kvtools/split_path.h"

namespace {

TEST(TranslatePath, ReplacesFolderExtensionAndAddsSuffix) {
  EXPECT_EQ(KVT_TranslatePath("d:\\a\\b.tif", nullptr, "vrt", nullptr), "d:\\a\\b.vrt");
  EXPECT_EQ(KVT_TranslatePath("d:\\a\\b.tif", nullptr, ".vrt", nullptr), "d:\\a\\b.vrt");
  EXPECT_EQ(KVT_TranslatePath("d:\\a\\b.vrt", nullptr, "vrt", "2"), "d:\\a\\b2.vrt");
  EXPECT_EQ(KVT_TranslatePath("d:\\a\\b.tif", "e:\\out", nullptr, nullptr), "e:\\out\\b.tif");
  EXPECT_EQ(KVT_TranslatePath("d:\\a.b\\c", nullptr, "vrt", "2"), "d:\\a.b\\c2.vrt");
  EXPECT_EQ(KVT_TranslatePath("d:\\a\\b.c.tif", nullptr, "vrt", nullptr), "d:\\a\\b.c.vrt");
  EXPECT_EQ(KVT_TranslatePath("d:\\a\\b.tif", nullptr, "", nullptr), "d:\\a\\b");
  EXPECT_EQ(KVT_TranslatePath("b.tif", nullptr, nullptr, nullptr), "b.tif");
}

TEST(OptimizePath, EndsInOneBackslashWithFlagOne) {
  EXPECT_EQ(KVT_OptimizePath("d:\\out\\maps", 1), "d:\\out\\maps\\");
  EXPECT_EQ(KVT_OptimizePath("d:\\out\\maps\\", 1), "d:\\out\\maps\\");
  EXPECT_EQ(KVT_OptimizePath("d:/out//maps", 1), "d:\\out\\maps\\");
  EXPECT_EQ(KVT_OptimizePath("\\\\server\\share\\\\maps", 1), "\\\\server\\share\\maps\\");
  EXPECT_EQ(KVT_OptimizePath("\\\\\\server\\share", 1), "\\\\server\\share\\");
  EXPECT_EQ(KVT_OptimizePath("d:\\", 1), "d:\\");
  EXPECT_EQ(KVT_OptimizePath("", 1), "");
}

TEST(OptimizePath, EndsInNoBackslashWithFlagZero) {
  EXPECT_EQ(KVT_OptimizePath("d:\\out\\maps\\\\", 0), "d:\\out\\maps");
  EXPECT_EQ(KVT_OptimizePath("d:\\", 0), "d:\\");
  EXPECT_EQ(KVT_OptimizePath("\\", 0), "\\");
}

TEST(OptimizePath, MakesTheFolderTheDirectoryPart) {
  const PathParts parts = SplitPath(KVT_OptimizePath("d:\\out\\maps.v2", 1));
  EXPECT_EQ(parts.drive, "d:");
  EXPECT_EQ(parts.directory, "\\out\\maps.v2\\");
  EXPECT_EQ(parts.name, "");
  EXPECT_EQ(parts.extension, "");
}

}  // namespace
