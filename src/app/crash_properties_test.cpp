#include "app/crash_properties.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const SystemTexts kSystem = {"Windows", "32 bit", "800 x 600", "1 MB total", {"First", "Second"}};
const UserData kUser = {"Ada", "Byron", "ada@example.org", "Engine", "+44"};

TEST(CrashProperties, StandInTheOrderOfReports) {
  auto properties = MakeCrashProperties(kSystem, kUser);
  ASSERT_FALSE(properties.empty());
  EXPECT_EQ(properties.front().first, "ExceptionTypeMeaning");
  properties.erase(properties.begin());
  const std::vector<CrashProperty> expected = {
      {"OS_Info", "Windows"},
      {"Screen_Pixel_Depth", "32 bit"},
      {"Screen_Resolution", "800 x 600"},
      {"RAM_Info", "1 MB total"},
      {"Graphic_Adapter_0", "First"},
      {"Graphic_Adapter_1", "Second"},
      {"User Data - Name", "Ada"},
      {"User Data - Surname", "Byron"},
      {"User Data - email", "ada@example.org"},
      {"User Data - company", "Engine"},
      {"User Data - telephone", "+44"},
  };
  EXPECT_EQ(properties, expected);
}

TEST(CrashProperties, ExplainThirteenCrashTypes) {
  const std::string legend = MakeCrashProperties({}, {}).front().second;
  EXPECT_EQ(std::count(legend.begin(), legend.end(), '\n'), 12);
  EXPECT_EQ(legend.find('\r'), std::string::npos);
  EXPECT_EQ(legend.back(), '.');
  EXPECT_EQ(legend.rfind("0 structured exception\n1 terminate call\n", 0), 0U);
  size_t line = 0;
  for (int type = 0; type < 13; ++type) {
    const std::string number = std::to_string(type) + " ";
    EXPECT_EQ(legend.compare(line, number.size(), number), 0) << type;
    line = legend.find('\n', line) + 1;
  }
}

TEST(CrashProperties, NameNoAdapterWhenThereIsNone) {
  SystemTexts system = kSystem;
  system.graphicAdapters.clear();
  EXPECT_EQ(MakeCrashProperties(system, kUser).size(), MakeCrashProperties(kSystem, kUser).size() - 2);
}

TEST(CrashProperties, CutLongSystemTexts) {
  SystemTexts system = kSystem;
  system.os.assign(5000, 'w');
  EXPECT_EQ(MakeCrashProperties(system, kUser)[1].second, std::string(1023, 'w'));
}

TEST(ReportSubject, NamesApplicationAndVersion) {
  EXPECT_EQ(MakeReportSubject("Mosaicon", "2.0.1"), "Mosaicon (ver. 2.0.1) Error report");
  EXPECT_EQ(MakeReportSubject(std::string(3000, 'a'), "1").size(), 1023U);
}

}  // namespace
