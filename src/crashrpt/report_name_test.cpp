#include "crashrpt/report_name.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t kPerSecond = 10'000'000;
// 1970-01-01 in the time of Windows.
constexpr uint64_t kUnixEpoch = 11'644'473'600 * kPerSecond;
constexpr char kGuid[] = "6f9619ff-8b86-d011-b42d-00c04fc964ff";

TEST(IsoTime, CountsFrom1601) {
  EXPECT_EQ(IsoTime(0), "1601-01-01T00:00:00Z");
  EXPECT_EQ(IsoTime(kUnixEpoch), "1970-01-01T00:00:00Z");
}

TEST(IsoTime, KnowsLeapYearsAndTheLastSecondOfADay) {
  // date -u -d 2028-02-29T23:59:59Z +%s
  EXPECT_EQ(IsoTime(kUnixEpoch + 1'835'481'599 * kPerSecond), "2028-02-29T23:59:59Z");
  EXPECT_EQ(IsoTime(kUnixEpoch + 1'835'481'600 * kPerSecond), "2028-03-01T00:00:00Z");
  EXPECT_EQ(IsoTime(kUnixEpoch + 1'835'481'600 * kPerSecond - 1), "2028-02-29T23:59:59Z") << "not rounded up";
}

TEST(ReportName, BeginsWithTheTime) {
  EXPECT_EQ(ReportName(kUnixEpoch + 1'835'481'599 * kPerSecond, kGuid),
            std::string("20280229T235959Z-") + kGuid);
}

TEST(ReportName, IsRecognised) {
  const std::string name = ReportName(kUnixEpoch, kGuid);
  EXPECT_TRUE(IsReportName(name));
  EXPECT_FALSE(IsReportName(name + kUnfinished));
  EXPECT_FALSE(IsReportName(name + ".lock"));
  EXPECT_FALSE(IsReportName("x" + name));
  EXPECT_FALSE(IsReportName(name.substr(0, name.size() - 1)));
  EXPECT_FALSE(IsReportName(name.substr(0, name.size() - 1) + "g"));
  for (const char* other : {"", ".", "..", "pending", "sent"}) EXPECT_FALSE(IsReportName(other)) << other;
}

TEST(FileNameOf, KeepsOrdinaryNames) {
  EXPECT_EQ(FileNameOf("Mosaicon 1.0 (\xFC)"), "Mosaicon 1.0 (\xFC)");
}

TEST(FileNameOf, ReplacesWhatNoFileNameMayHold) {
  EXPECT_EQ(FileNameOf("a<b>c:d\"e/f\\g|h?i*j\nk"), "a_b_c_d_e_f_g_h_i_j_k");
  EXPECT_EQ(FileNameOf(".."), "__");
  EXPECT_EQ(FileNameOf("name. "), "name__");
  EXPECT_EQ(FileNameOf(""), "_");
}

}  // namespace
