#include "job/windows_process.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "job/tool_paths.h"
#include "support/fakes.h"

namespace {

TEST(Environment, IsThatOfTheProcess) {
  WindowsEnvironment environment;
  EXPECT_EQ(environment.Get("MOSAICON_TEST_VARIABLE"), std::nullopt);
  EXPECT_TRUE(environment.Set("MOSAICON_TEST_VARIABLE", "a b"));
  EXPECT_EQ(environment.Get("MOSAICON_TEST_VARIABLE"), "a b");
  char value[16];
  EXPECT_EQ(GetEnvironmentVariableA("MOSAICON_TEST_VARIABLE", value, sizeof value), 3U);
  const std::string longText(20000, 'x');
  EXPECT_TRUE(environment.Set("MOSAICON_TEST_VARIABLE", longText));
  EXPECT_EQ(environment.Get("MOSAICON_TEST_VARIABLE"), longText);
  EXPECT_FALSE(environment.Set("", "x"));
}

TEST(Environment, TakesTheToolFolderOnceIntoALongPath) {
  WindowsEnvironment environment;
  const std::string before = environment.Get("PATH").value_or("");
  const std::string longPath = before + ";C:\\" + std::string(20000, 'x');
  ASSERT_TRUE(environment.Set("PATH", longPath));
  Events events;
  FakeHost host(events);
  const ToolPaths tools = MakeToolPaths("C:\\App\\Mosaicon.exe");
  for (int job = 0; job < 2; ++job) {
    EXPECT_TRUE(SetToolEnvironment(tools, environment, host));
    EXPECT_EQ(environment.Get("PATH"), longPath + ";C:\\App\\gdal2tiles");
  }
  environment.Set("PATH", before);
}

TEST(ProgramPath, NamesThisProgram) {
  const std::string path = GetProgramPath();
  EXPECT_EQ(path.substr(path.rfind('\\') + 1), "job_windows_test.exe");
}

}  // namespace
