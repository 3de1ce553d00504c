// The remote side over the FTP client of the upload dialog. A connection on which a wait was given up is
// closed at once.
#ifndef MOSAICON_PUBLISH_FTP_REMOTE_SERVER_H_
#define MOSAICON_PUBLISH_FTP_REMOTE_SERVER_H_

#include "publish/ftp_upload_client.h"
#include "publish/remote_server.h"

class FtpRemoteServer : public RemoteServer {
 public:
  // client must outlive it.
  explicit FtpRemoteServer(CFtpUploadClient& client) : m_client(client) {}

  bool IsConnected() override;
  int ChangeFolder(const std::string& name) override;
  int GoToParent() override;
  int MakeFolder(const std::string& name) override;
  int RemoveFolder(const std::string& name) override;
  int RemoveFile(const std::string& name) override;
  int CurrentFolder(std::string& path) override;
  int SendFile(const std::string& localPath, const std::string& name) override;
  int List() override;
  int EntryCount() override;
  FtpDirEntry Entry(int index) override;
  int ReportError(int code) override;

 private:
  int Finish(int code);

  CFtpUploadClient& m_client;
};

#endif  // MOSAICON_PUBLISH_FTP_REMOTE_SERVER_H_
