#include "job/tool_run.h"

#include <gtest/gtest.h>

namespace {

ToolRun RunOf(Tool tool) {
  return {tool, "C:\\t\\tool.exe", " x", "D:\\in\\a.tif", "D:\\in\\a.vrt", "D:\\out\\y"};
}

TEST(ToolRun, EndsWithItsProduct) {
  EXPECT_EQ(ProductOf(RunOf(Tool::kTranslator)), "D:\\out\\y");
  EXPECT_EQ(ProductOf(RunOf(Tool::kWarper)), "D:\\out\\y");
  EXPECT_EQ(ProductOf(RunOf(Tool::kTiler)), "D:\\out\\y\\doc.kml")
      << "the script writes it when all tiles are there";
}

// Their exit codes are no sign: a picture with a remark has one as well.
TEST(ToolRun, OfGdalSucceedsWithItsFile) {
  for (const std::optional<uint32_t> exitCode :
       {std::optional<uint32_t>(), std::optional<uint32_t>(0), std::optional<uint32_t>(1)}) {
    EXPECT_EQ(FindProblem(RunOf(Tool::kTranslator), {exitCode, "", "", true}), "");
    EXPECT_EQ(FindProblem(RunOf(Tool::kTranslator), {exitCode, "", "", false}),
              "gdal_translate could not write D:\\out\\y");
    EXPECT_EQ(FindProblem(RunOf(Tool::kWarper), {exitCode, "", "", true}), "");
    EXPECT_EQ(FindProblem(RunOf(Tool::kWarper), {exitCode, "", "", false}),
              "gdalwarp could not write D:\\out\\y");
  }
}

TEST(ToolRun, OfTheScriptSucceedsWithItsWordAndItsFile) {
  struct Case {
    const char* lastWords;
    bool madeProduct;
    const char* problem;
  };
  const Case cases[] = {
      {"RESULT OK", true, ""},
      {"RESULT OK", false, "the tiler made no doc.kml"},
      {"RESULT FAILED no memory", true, "no memory"},
      {"RESULT FAILED no memory", false, "no memory"},
      {"", false, "the tiler did not start or was ended from outside"},
      {"", true, "the tiler could not write its log C:\\t.log, so nothing is known of its success"},
  };
  for (const Case& each : cases) {
    for (const uint32_t exitCode : {0U, 1U}) {
      EXPECT_EQ(FindProblem(RunOf(Tool::kTiler), {exitCode, each.lastWords, "C:\\t.log", each.madeProduct}),
                each.problem)
          << each.lastWords << each.madeProduct;
    }
  }
}

}  // namespace
