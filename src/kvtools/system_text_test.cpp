#include "kvtools/system_text.h"

#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

OsFacts Windows10() {
  OsFacts facts;
  facts.major = 10;
  facts.build = 19045;
  facts.revision = 3803;
  facts.productName = "Windows 10 Pro";
  facts.displayVersion = "22H2";
  facts.architecture = Architecture::k64Bit;
  return facts;
}

TEST(DescribeOs, TellsNameVersionBuildAndBits) {
  EXPECT_EQ(DescribeOs(Windows10()), "Windows 10 Pro 22H2 (build 19045.3803), 64 bit");
  OsFacts facts = Windows10();
  facts.architecture = Architecture::k32Bit;
  EXPECT_EQ(DescribeOs(facts), "Windows 10 Pro 22H2 (build 19045.3803), 32 bit");
  facts.architecture = Architecture::k64BitArm;
  EXPECT_EQ(DescribeOs(facts), "Windows 10 Pro 22H2 (build 19045.3803), 64 bit (ARM)");
}

TEST(DescribeOs, KnowsWindows11ByItsBuild) {
  OsFacts facts = Windows10();
  facts.revision = 1;
  facts.build = 21999;
  EXPECT_EQ(DescribeOs(facts), "Windows 10 Pro 22H2 (build 21999.1), 64 bit");
  facts.build = 22000;
  EXPECT_EQ(DescribeOs(facts), "Windows 11 Pro 22H2 (build 22000.1), 64 bit");
  facts.productName = "Windows 11 Pro";
  EXPECT_EQ(DescribeOs(facts), "Windows 11 Pro 22H2 (build 22000.1), 64 bit");
  facts.productName = "Windows Server 2025 Standard";
  EXPECT_EQ(DescribeOs(facts), "Windows Server 2025 Standard 22H2 (build 22000.1), 64 bit");
}

TEST(DescribeOs, TellsTheServicePackOfOlderSystems) {
  OsFacts facts;
  facts.major = 6;
  facts.minor = 1;
  facts.build = 7601;
  facts.productName = "Windows 7 Professional";
  facts.servicePack = "Service Pack 1";
  facts.architecture = Architecture::k64Bit;
  EXPECT_EQ(DescribeOs(facts), "Windows 7 Professional Service Pack 1 (build 7601), 64 bit");
}

TEST(DescribeOs, NamesWine) {
  OsFacts facts = Windows10();
  facts.productName = "Microsoft Windows 10";
  facts.displayVersion = "";
  facts.revision = -1;
  facts.wineVersion = "8.0";
  EXPECT_EQ(DescribeOs(facts), "Windows 10 (build 19045), 64 bit, Wine 8.0");
}

TEST(DescribeOs, NamesTheSystemByItsVersionWhenNothingElseIsKnown) {
  struct Case {
    unsigned major;
    unsigned minor;
    unsigned build;
    bool server;
    const char* text;
  };
  const Case cases[] = {{6, 1, 7600, false, "Windows 7 (build 7600)"},
                        {6, 2, 9200, false, "Windows 8 (build 9200)"},
                        {6, 3, 9600, false, "Windows 8.1 (build 9600)"},
                        {10, 0, 19045, false, "Windows 10 (build 19045)"},
                        {10, 0, 22631, false, "Windows 11 (build 22631)"},
                        {10, 0, 20348, true, "Windows Server (build 20348)"},
                        {12, 3, 40000, false, "Windows 12.3 (build 40000)"},
                        {0, 0, 0, false, "Windows"}};
  for (const Case& each : cases) {
    OsFacts facts;
    facts.major = each.major;
    facts.minor = each.minor;
    facts.build = each.build;
    facts.server = each.server;
    EXPECT_EQ(DescribeOs(facts), each.text);
  }
}

TEST(DescribePixelDepth, TellsBits) {
  EXPECT_EQ(DescribePixelDepth(32), "32 bit");
  EXPECT_EQ(DescribePixelDepth(8), "8 bit");
}

TEST(DescribeResolution, AddsTheVirtualDesktopWhenItIsLarger) {
  EXPECT_EQ(DescribeResolution({1920, 1080}, {1920, 1080}), "1920 x 1080");
  EXPECT_EQ(DescribeResolution({1920, 1080}, {3840, 1080}), "1920 x 1080, virtual desktop 3840 x 1080");
  EXPECT_EQ(DescribeResolution({1920, 1080}, {1920, 2160}), "1920 x 1080, virtual desktop 1920 x 2160");
}

TEST(DescribeMemory, CountsWholeMegabytes) {
  constexpr uint64_t kMegabyte = 1024 * 1024;
  EXPECT_EQ(DescribeMemory(16384 * kMegabyte, 8190 * kMegabyte), "16384 MB total, 8190 MB available");
  EXPECT_EQ(DescribeMemory(2 * kMegabyte - 1, 0), "1 MB total, 0 MB available");
  EXPECT_EQ(DescribeMemory(4194304 * kMegabyte, 1), "4194304 MB total, 0 MB available");
}

TEST(AdapterDescriptions, CountTheOutputsOfOneAdapterOnce) {
  EXPECT_EQ(AdapterDescriptions({{"Radeon", "\\Video\\{A}\\0000", false},
                                 {"Radeon", "\\Video\\{A}\\0001", false},
                                 {"Intel UHD", "\\Video\\{B}\\0000", false},
                                 {"Radeon", "\\Video\\{A}\\0002", false}}),
            (Texts{"Radeon", "Intel UHD"}));
}

TEST(AdapterDescriptions, KeepTwoAdaptersOfOneModel) {
  EXPECT_EQ(
      AdapterDescriptions({{"Radeon", "\\Video\\{A}\\0000", false}, {"Radeon", "\\Video\\{B}\\0000", false}}),
      (Texts{"Radeon", "Radeon"}));
}

TEST(AdapterDescriptions, LeaveMirroringDriversOut) {
  EXPECT_EQ(AdapterDescriptions(
                {{"Radeon", "\\Video\\{A}\\0000", false}, {"RDP Mirror Driver", "\\Video\\{C}\\0000", true}}),
            (Texts{"Radeon"}));
  EXPECT_EQ(AdapterDescriptions({}), Texts());
}

TEST(AdapterDescriptions, GoByTheDescriptionWhereThereIsNoKey) {
  EXPECT_EQ(AdapterDescriptions({{"Radeon", "", false}, {"Radeon", "", false}, {"Intel UHD", "", false}}),
            (Texts{"Radeon", "Intel UHD"}));
}

TEST(FileVersionPath, HasFourDigitsForEachNumber) {
  EXPECT_EQ(FileVersionPath(0x0409, 1200), "\\StringFileInfo\\040904B0\\FileVersion");
  EXPECT_EQ(FileVersionPath(0, 0), "\\StringFileInfo\\00000000\\FileVersion");
  EXPECT_EQ(FileVersionPath(0xFC07, 0xFDE9), "\\StringFileInfo\\FC07FDE9\\FileVersion");
}

}  // namespace
