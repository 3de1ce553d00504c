// Who else may have the file open: only Windows knows such rules.
#include <gtest/gtest.h>

#include "net/cut_file.h"
#include "support/temporary_folder.h"

namespace {

TEST(CutFileSharing, LetsOthersReadButNotWrite) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("a");
  WriteFile(path, "abc");
  CUT_File first;
  ASSERT_EQ(first.Open(path.c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  CUT_File second;
  EXPECT_EQ(second.Open(path.c_str(), kFileReadAccess, kFileOpenExisting, 0), 0);
  EXPECT_EQ(second.Open(path.c_str(), kFileReadAccess | kFileWriteAccess, kFileOpenExisting, 0), -1);
  first.Close();
  EXPECT_EQ(second.Open(path.c_str(), kFileReadAccess | kFileWriteAccess, kFileOpenExisting, 0), 0);
}

}  // namespace
