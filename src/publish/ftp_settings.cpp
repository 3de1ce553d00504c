#include "publish/ftp_settings.h"

#include <cstdlib>

#include "kvtools/kvtools.h"
#include "net/net_text.h"

namespace {

constexpr char kSection[] = "FTP";
constexpr char kHost[] = "host";
constexpr char kUserName[] = "username";
constexpr char kPassword[] = "password";
constexpr char kFirewall[] = "bFirewall";
constexpr char kRemoteFolder[] = "remoteFolder";
constexpr char kTransferType[] = "transferType";
constexpr int kBuffer = 1024;

std::string Load(const char* key, const char* defaultValue) {
  char value[kBuffer] = "";
  KVT_GetUserProfileString(kSection, key, defaultValue, value, kBuffer);
  std::string text = value;
  // The stack is part of crash reports, and it may be the password.
  Wipe(value, kBuffer);
  return text;
}

void Save(const char* key, const std::string& value) {
  KVT_WriteUserProfileString(kSection, key, value.c_str());
}

}  // namespace

FtpSettings::~FtpSettings() {
  Wipe(password.data(), password.size());
}

FtpSettings LoadFtpSettings() {
  FtpSettings settings;
  settings.host = Load(kHost, "");
  settings.userName = Load(kUserName, "");
  settings.password = Load(kPassword, "");
  settings.firewallMode = std::atoi(Load(kFirewall, "0").c_str()) != 0;
  settings.remoteFolder = Load(kRemoteFolder, "");
  settings.byteTransfer = std::atoi(Load(kTransferType, "1").c_str()) != 0;
  return settings;
}

void SaveFirewallMode(bool firewallMode) {
  Save(kFirewall, firewallMode ? "1" : "0");
}

void SaveTransferType(bool byteTransfer) {
  Save(kTransferType, byteTransfer ? "1" : "0");
}

void SaveLogin(const std::string& host, const std::string& userName, const std::string& password) {
  Save(kHost, host);
  Save(kUserName, userName);
  Save(kPassword, password);
}

void SaveRemoteFolder(const std::string& remoteFolder) {
  Save(kRemoteFolder, remoteFolder);
}
