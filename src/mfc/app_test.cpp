#include "mfc/app.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace {

TEST(ControlContainer, IsTakenFromTheSystemOnly) {
  const TemporaryFolder folder;
  WriteFile(folder.Path("atl.dll"), "not of the system");
  // Windows looks here before it looks into its own folder, as it does beside the program.
  ASSERT_TRUE(SetDllDirectoryA(folder.Path().c_str()));
  EXPECT_TRUE(AfxEnableControlContainer());
  SetDllDirectoryA(nullptr);
}

}  // namespace
