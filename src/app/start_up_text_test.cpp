#include "app/start_up_text.h"

#include <gtest/gtest.h>

namespace {

TEST(ShortVersion, CutsBeforeTheThirdPoint) {
  struct Case {
    const char* module;
    const char* version;
  };
  const Case cases[] = {
      {"1.4.2.7", "1.4.2"},   {"2,0,1,0", "2.0.1"}, {"1, 0, 0, 1", "1. 0. 0"},
      {"1.4.2", "1.4.2"},     {"1", "1"},           {"", ""},
      {"1.2.3.4.5", "1.2.3"}, {"...", ".."},
  };
  for (const Case& each : cases) EXPECT_EQ(ShortVersion(each.module), each.version) << each.module;
}

TEST(InputListFromCommandLine, IsWhatFollowsTheQuotedProgram) {
  struct Case {
    const char* commandLine;
    const char* list;
  };
  const Case cases[] = {
      {R"("C:\X\Prog.exe" "D:\Maps\A.tif")", R"(d:\maps\a.tif)"},
      {R"("C:\X\PROG.EXE" D:\Maps\A.tif|D:\Maps\B.tif)", R"(d:\maps\a.tif|d:\maps\b.tif)"},
      {R"("C:\X\Prog.exe" "D:\My Maps\A.tif|D:\My Maps\B.tif")", R"(d:\my maps\a.tif|d:\my maps\b.tif)"},
      {R"("C:\X\Prog.exe" "D:\A.tif"|"D:\B.tif")", R"(d:\a.tif|d:\b.tif)"},
      {R"("prog.exe" a)", "a"},
      {R"("C:\X\Prog.exe")", ""},
      {R"("C:\X\Prog.exe" )", ""},
      {R"(C:\X\Prog.exe)", ""},
      {R"(C:\X\Prog.exe D:\Maps\A.tif)", ""},
      {"", ""},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(InputListFromCommandLine(each.commandLine, R"(C:\X\Prog.exe)"), each.list) << each.commandLine;
  }
}

TEST(InputListFromCommandLine, KeepsAccentedLettersAsTheyAre) {
  EXPECT_EQ(InputListFromCommandLine("\"c:\\prog.exe\" d:\\citt\xE0\\\xC0.TIF", "c:\\prog.exe"),
            "d:\\citt\xE0\\\xC0.tif");
}

}  // namespace
