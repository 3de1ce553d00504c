#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "kvtools/kvtools.h"
#include "kvtools/system_function.h"

namespace {

std::string OsInfo() {
  char text[1024];
  const int length = KVT_GetOSInfo(text, sizeof text);
  EXPECT_EQ(std::string(text).size(), static_cast<size_t>(length));
  return text;
}

// The build from another source than the one that is tested: the registry.
std::string RegisteredBuild() {
  char build[64] = "";
  DWORD size = sizeof build;
  RegGetValueA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", "CurrentBuildNumber",
               RRF_RT_REG_SZ, nullptr, build, &size);
  return build;
}

TEST(OsInfo, NamesTheSystemItsBuildAndItsBits) {
  const std::string text = OsInfo();
  ASSERT_NE(RegisteredBuild(), "");
  EXPECT_EQ(text.find("Windows "), 0U) << text;
  EXPECT_NE(text.find("(build " + RegisteredBuild()), std::string::npos) << text;
  EXPECT_NE(text.find("), 64 bit"), std::string::npos) << text;
}

TEST(OsInfo, EndsWithTheVersionOfWineUnderWineOnly) {
  using WineGetVersionFunction = const char*(__cdecl*)();
  const auto wineVersion = FindSystemFunction<WineGetVersionFunction>("ntdll.dll", "wine_get_version");
  const std::string text = OsInfo();
  if (wineVersion == nullptr) {
    EXPECT_EQ(text.find("Wine"), std::string::npos) << text;
    return;
  }
  const std::string expected = std::string(", Wine ") + wineVersion();
  ASSERT_GT(text.size(), expected.size());
  EXPECT_EQ(text.substr(text.size() - expected.size()), expected);
}

TEST(OsInfo, IsCutToTheBuffer) {
  char text[8];
  EXPECT_EQ(KVT_GetOSInfo(text, sizeof text), 7);
  EXPECT_STREQ(text, "Windows");
}

}  // namespace
