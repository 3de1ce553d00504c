#include "batch/report_lines.h"

#include <gtest/gtest.h>

namespace {

TEST(ReportLines, DoNotCallAFailedOrthophotoOk) {
  const std::string log =
      "- d:\\a.tif: OK\r\n- d:\\b.tif: previous process result deleted\r\n- d:\\b.tif: OK\r\n- d:\\c.tif "
      "skipped\r\n";
  EXPECT_EQ(WithoutFalseSuccess(log, {{"d:\\a.tif", MapState::kComplete, "", {}},
                                      {"d:\\b.tif", MapState::kFailed, "no doc.kml", {}}}),
            "- d:\\a.tif: OK\n- d:\\b.tif: previous process result deleted\n- d:\\c.tif skipped\n");
  EXPECT_EQ(WithoutFalseSuccess(log, {}).size(), log.size() - 4);
}

TEST(ReportLines, EndAlways) {
  EXPECT_EQ(WithoutFalseSuccess("Aborted by user", {{"d:\\a.tif", MapState::kFailed, "no", {}}}),
            "Aborted by user\n");
  EXPECT_EQ(WithoutFalseSuccess("", {}), "");
}

}  // namespace
