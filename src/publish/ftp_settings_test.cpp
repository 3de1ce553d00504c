#include "publish/ftp_settings.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "kvtools/kvtools.h"

namespace {

std::string Stored(const char* key) {
  char value[2048] = "";
  KVT_GetUserProfileString("FTP", key, "(none)", value, sizeof value);
  return value;
}

class FtpSettingsTest : public testing::Test {
 protected:
  void SetUp() override { KVT_SetProfileProduct("FtpSettingsTest"); }
};

TEST_F(FtpSettingsTest, AreSavedOneByOne) {
  const FtpSettings fresh = LoadFtpSettings();
  EXPECT_EQ(fresh.host, "");
  EXPECT_EQ(fresh.userName, "");
  EXPECT_EQ(fresh.password, "");
  EXPECT_EQ(fresh.remoteFolder, "");
  EXPECT_FALSE(fresh.firewallMode);
  EXPECT_TRUE(fresh.byteTransfer);

  SaveFirewallMode(true);
  EXPECT_EQ(Stored("bFirewall"), "1");
  EXPECT_EQ(Stored("host"), "(none)");
  SaveTransferType(false);
  EXPECT_EQ(Stored("transferType"), "0");
  SaveLogin("ftp.example.com", "ann", "secret");
  EXPECT_EQ(Stored("host"), "ftp.example.com");
  EXPECT_EQ(Stored("username"), "ann");
  EXPECT_EQ(Stored("password"), "secret");
  EXPECT_EQ(Stored("remoteFolder"), "(none)");
  SaveRemoteFolder("www/maps");
  EXPECT_EQ(Stored("remoteFolder"), "www/maps");

  const FtpSettings kept = LoadFtpSettings();
  EXPECT_EQ(kept.host, "ftp.example.com");
  EXPECT_EQ(kept.userName, "ann");
  EXPECT_EQ(kept.password, "secret");
  EXPECT_EQ(kept.remoteFolder, "www/maps");
  EXPECT_TRUE(kept.firewallMode);
  EXPECT_FALSE(kept.byteTransfer);

  SaveFirewallMode(false);
  SaveTransferType(true);
  EXPECT_EQ(Stored("bFirewall"), "0");
  EXPECT_EQ(Stored("transferType"), "1");
}

TEST_F(FtpSettingsTest, TakeAnyNumberButZeroForByte) {
  for (const auto& [text, isByte] : {std::pair("7", true), {"-1", true}, {"0", false}, {"x", false}}) {
    KVT_WriteUserProfileString("FTP", "transferType", text);
    EXPECT_EQ(LoadFtpSettings().byteTransfer, isByte) << text;
  }
}

// Looks at the memory in which the settings were; so short a password stands in the object itself.
TEST_F(FtpSettingsTest, LeaveNoPasswordBehind) {
  SaveLogin("host", "ann", "hush-hush");
  alignas(FtpSettings) char memory[sizeof(FtpSettings)] = "";
  const auto bytes = [&memory] { return std::string(memory, sizeof memory); };
  auto* const settings = new (memory) FtpSettings(LoadFtpSettings());
  ASSERT_NE(bytes().find("hush-hush"), std::string::npos);
  settings->~FtpSettings();
  EXPECT_EQ(bytes().find("hush-hush"), std::string::npos);
}

TEST_F(FtpSettingsTest, AreCutToTheirBuffer) {
  SaveRemoteFolder(std::string(2000, 'x'));
  EXPECT_EQ(LoadFtpSettings().remoteFolder, std::string(1023, 'x'));
}

}  // namespace
