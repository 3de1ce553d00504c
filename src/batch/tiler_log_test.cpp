#include "batch/tiler_log.h"

#include <gtest/gtest.h>

namespace {

TEST(TilerLog, TellsTheLastResult) {
  EXPECT_TRUE(ReadTilerResult("start\nRESULT OK\n").ok);
  EXPECT_TRUE(ReadTilerResult("RESULT OK\r\n").ok);
  EXPECT_TRUE(ReadTilerResult("RESULT FAILED first\nRESULT OK").ok);
  const TilerResult failed = ReadTilerResult("RESULT OK\nwarning\nRESULT FAILED the image has 6 bands\r\n");
  EXPECT_FALSE(failed.ok);
  EXPECT_TRUE(failed.told);
  EXPECT_EQ(failed.reason, "the image has 6 bands");
}

TEST(TilerLog, TakesSilenceForAScriptThatDidNotFinish) {
  for (const char* text : {"", "start\nwarning\n", "RESULT", " RESULT OK\n", "RESULT OK and more\n"}) {
    const TilerResult result = ReadTilerResult(text);
    EXPECT_FALSE(result.ok || result.told) << text;
    EXPECT_EQ(result.reason, "the tiling script did not start or was ended from outside");
  }
}

TEST(QuotedArguments, AreTakenFromACommandLine) {
  using Texts = std::vector<std::string>;
  EXPECT_EQ(QuotedArguments(" \"C:\\t\\g.py\" -a 0 -t \"x\" \"D:\\a b.tif\" \"D:\\out\""),
            (Texts{"C:\\t\\g.py", "x", "D:\\a b.tif", "D:\\out"}));
  EXPECT_EQ(QuotedArguments(" -of VRT \"\" \"b\""), (Texts{"", "b"}));
  EXPECT_EQ(QuotedArguments(" -of VRT"), Texts{});
  EXPECT_EQ(QuotedArguments("\"open"), Texts{});
}

}  // namespace
