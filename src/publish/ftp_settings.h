// What the upload dialog remembers of the last connection, in the user's profile. The password is kept
// as plain text. Portable; thread of the user interface.
#ifndef MOSAICON_PUBLISH_FTP_SETTINGS_H_
#define MOSAICON_PUBLISH_FTP_SETTINGS_H_

#include <string>

struct FtpSettings {
  std::string host;
  std::string userName;
  std::string password;
  std::string remoteFolder;
  bool firewallMode = false;  // passive data connections
  bool byteTransfer = true;   // otherwise ASCII

  FtpSettings() = default;
  FtpSettings(FtpSettings&&) = default;
  FtpSettings& operator=(FtpSettings&&) = default;
  ~FtpSettings();  // wipes the password
};

FtpSettings LoadFtpSettings();

// Saved one by one, as the steps of a connection succeed.
void SaveFirewallMode(bool firewallMode);
void SaveTransferType(bool byteTransfer);
void SaveLogin(const std::string& host, const std::string& userName, const std::string& password);
void SaveRemoteFolder(const std::string& remoteFolder);

#endif  // MOSAICON_PUBLISH_FTP_SETTINGS_H_
