// Needs a screen; under Wine, an X display.

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "kvtools/kvtools.h"

namespace {

std::string Size(int widthMetric, int heightMetric) {
  return std::to_string(GetSystemMetrics(widthMetric)) + " x " +
         std::to_string(GetSystemMetrics(heightMetric));
}

TEST(Resolution, IsThePrimaryScreensAndTheDesktopsWhenItIsLarger) {
  const std::string primary = Size(SM_CXSCREEN, SM_CYSCREEN);
  const std::string desktop = Size(SM_CXVIRTUALSCREEN, SM_CYVIRTUALSCREEN);
  char text[1024] = "";
  const int length = KVT_GetResolution(text, sizeof text);
  EXPECT_EQ(text, desktop == primary ? primary : primary + ", virtual desktop " + desktop);
  EXPECT_EQ(static_cast<size_t>(length), std::string(text).size());
}

TEST(PixelDepth, IsThatOfTheScreen) {
  HDC screen = GetDC(nullptr);
  const int bits = GetDeviceCaps(screen, BITSPIXEL) * GetDeviceCaps(screen, PLANES);
  ReleaseDC(nullptr, screen);
  ASSERT_GT(bits, 1) << "no screen: under Wine, DISPLAY must name an X server";
  char text[1024] = "";
  const int length = KVT_GetPixelDepth(text, sizeof text);
  EXPECT_EQ(text, std::to_string(bits) + " bit");
  EXPECT_EQ(static_cast<size_t>(length), std::string(text).size());
}

TEST(DisplayAdapters, BeginWithTheFirstDevicesAndAreCounted) {
  DISPLAY_DEVICEA first = {};
  first.cb = sizeof first;
  ASSERT_TRUE(EnumDisplayDevicesA(nullptr, 0, &first, 0))
      << "no screen: under Wine, DISPLAY must name an X server";
  std::vector<std::string> adapters = {"left over", "left over", "left over"};
  const int count = KVT_GetDisplayAdaptersList(adapters);
  ASSERT_EQ(static_cast<size_t>(count), adapters.size());
  ASSERT_GE(count, 1);
  EXPECT_EQ(adapters[0], first.DeviceString);
  for (const std::string& each : adapters) {
    EXPECT_NE(each, "");
    EXPECT_NE(each, "left over");
  }
}

}  // namespace
