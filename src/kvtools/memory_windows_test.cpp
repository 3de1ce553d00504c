#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>

#include "kvtools/kvtools.h"

namespace {

constexpr unsigned long long kBytesPerMegabyte = 1048576;

TEST(RamInfo, TellsWhatTheSystemHas) {
  MEMORYSTATUSEX memory = {};
  memory.dwLength = sizeof memory;
  ASSERT_TRUE(GlobalMemoryStatusEx(&memory));
  char text[1024];
  const int length = KVT_GetRAMInfo(text, sizeof text);

  unsigned long long total = 0;
  unsigned long long available = 0;
  int parsed = 0;
  ASSERT_EQ(std::sscanf(text, "%llu MB total, %llu MB available%n", &total, &available, &parsed), 2) << text;
  EXPECT_EQ(parsed, length);
  EXPECT_EQ(total, memory.ullTotalPhys / kBytesPerMegabyte);
  EXPECT_GT(available, 0U);
  EXPECT_LE(available, total);
}

}  // namespace
