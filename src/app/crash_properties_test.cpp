#include "app/crash_properties.h"

#include <gtest/gtest.h>

namespace {

const SystemTexts kSystem = {"Windows", "32 bit", "800 x 600", "1 MB total", {"First", "Second"}};

TEST(SystemProperties, StandInTheOrderOfReports) {
  auto properties = MakeSystemProperties(kSystem);
  ASSERT_FALSE(properties.empty());
  EXPECT_EQ(properties.front().first, "ExceptionTypeMeaning");
  properties.erase(properties.begin());
  const std::vector<CrashProperty> expected = {
      {"OS_Info", "Windows"},     {"Screen_Pixel_Depth", "32 bit"}, {"Screen_Resolution", "800 x 600"},
      {"RAM_Info", "1 MB total"}, {"Graphic_Adapter_0", "First"},   {"Graphic_Adapter_1", "Second"},
  };
  EXPECT_EQ(properties, expected);
}

TEST(SystemProperties, ExplainThirteenCrashTypes) {
  EXPECT_EQ(MakeSystemProperties({}).front().second,
            "0 structured exception\n"
            "1 terminate call\n"
            "2 unexpected call\n"
            "3 pure virtual function call\n"
            "4 new-operator fault\n"
            "5 buffer overrun\n"
            "6 invalid parameter\n"
            "7 SIGABRT (abort)\n"
            "8 SIGFPE (floating point exception)\n"
            "9 SIGILL (illegal instruction)\n"
            "10 SIGINT\n"
            "11 SIGSEGV (invalid storage access)\n"
            "12 SIGTERM (termination request).");
}

TEST(SystemProperties, NameNoAdapterWhenThereIsNone) {
  SystemTexts system = kSystem;
  system.graphicAdapters.clear();
  EXPECT_EQ(MakeSystemProperties(system).size(), MakeSystemProperties(kSystem).size() - 2);
}

TEST(SystemProperties, CutLongSystemTexts) {
  SystemTexts system = kSystem;
  system.os.assign(5000, 'w');
  EXPECT_EQ(MakeSystemProperties(system)[1].second, std::string(1023, 'w'));
}

TEST(UserProperties, StandInTheOrderOfReports) {
  const std::vector<CrashProperty> expected = {
      {"User Data - Name", "Ada"},
      {"User Data - Surname", "Byron"},
      {"User Data - email", "ada@example.org"},
      {"User Data - company", "Engine"},
      {"User Data - telephone", "+44"},
  };
  EXPECT_EQ(MakeUserProperties({"Ada", "Byron", "ada@example.org", "Engine", "+44"}), expected);
}

TEST(ReportSubject, NamesApplicationAndVersion) {
  EXPECT_EQ(MakeReportSubject("Mosaicon", "2.0.1"), "Mosaicon (ver. 2.0.1) Error report");
  EXPECT_EQ(MakeReportSubject(std::string(3000, 'a'), "1").size(), 1023U);
}

}  // namespace
