#include "job/map_outcome.h"

#include <gtest/gtest.h>

namespace {

const MapOutcome kComplete = {"D:\\a.tif", MapState::kComplete, "", {}};
const MapOutcome kFailed = {"D:\\b.tif", MapState::kFailed, "no memory", {}};
const MapOutcome kKilled = {"D:\\c.tif", MapState::kFailed, "the script was ended", 9};
const MapOutcome kLeftOut = {"D:\\d.tif", MapState::kLeftOut, "the job was aborted", {}};
const MapOutcome kKept = {"D:\\e.tif", MapState::kKept, "", {}};

TEST(MapOutcomes, TellNothingWhenAllIsThere) {
  for (const std::vector<MapOutcome>& maps :
       {std::vector<MapOutcome>{}, {kComplete}, {kComplete, kComplete}, {kKept}, {kComplete, kKept}}) {
    EXPECT_EQ(CountProblems(maps), "");
    EXPECT_EQ(DescribeProblems(maps, "C:\\x.log"), "");
  }
}

TEST(MapOutcomes, CountWhatIsMissingOrIncomplete) {
  EXPECT_EQ(CountProblems({kFailed}), "The map is missing or incomplete:");
  EXPECT_EQ(CountProblems({kLeftOut}), "The map is missing or incomplete:");
  EXPECT_EQ(CountProblems({kComplete, kFailed}), "1 of 2 maps is missing or incomplete:");
  EXPECT_EQ(CountProblems({kFailed, kComplete, kKept, kLeftOut, kKilled}),
            "3 of 5 maps are missing or incomplete:");
}

TEST(MapOutcomes, TellTheReasonOfEach) {
  EXPECT_EQ(DescribeProblems({kComplete, kFailed, kKilled, kLeftOut, kKept}, ""),
            "D:\\b.tif: no memory\r\n"
            "D:\\c.tif: the script was ended (exit code 9)\r\n"
            "D:\\d.tif: not made, because the job was aborted\r\n");
}

TEST(MapOutcomes, TellWhereTheDetailsAre) {
  EXPECT_EQ(DescribeProblems({kFailed}, "C:\\x.log"), "D:\\b.tif: no memory\r\nDetails are in C:\\x.log\r\n");
}

TEST(MapOutcomes, TellWhetherAnythingWentWrong) {
  EXPECT_TRUE(AnyFailed({kComplete, kKilled}));
  EXPECT_FALSE(AnyFailed({kComplete, kLeftOut, kKept}));
  EXPECT_FALSE(AnyFailed({}));
}

}  // namespace
