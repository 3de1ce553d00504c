// The remote side of publishing: what the walks and the index page need of the FTP client. Names are
// single components relative to the current remote folder, 8-bit, and go to the server as they are.
// Operations return an error code of net/error_codes.h (0: success). Any of them may take seconds and
// may run handlers of the user interface before it returns.
#ifndef MOSAICON_PUBLISH_REMOTE_SERVER_H_
#define MOSAICON_PUBLISH_REMOTE_SERVER_H_

#include <string>

#include "net/ftp_listing.h"

class RemoteServer {
 public:
  virtual ~RemoteServer() = default;

  virtual bool IsConnected() = 0;

  virtual int ChangeFolder(const std::string& name) = 0;  // CWD
  virtual int GoToParent() = 0;                           // CDUP
  virtual int MakeFolder(const std::string& name) = 0;    // MKD
  virtual int RemoveFolder(const std::string& name) = 0;  // RMD
  virtual int RemoveFile(const std::string& name) = 0;    // DELE
  // How the server calls the current remote folder. A path that it has told may be given to ChangeFolder.
  virtual int CurrentFolder(std::string& path) = 0;  // PWD
  // Stores the local file under name, replacing what is there.
  virtual int SendFile(const std::string& localPath, const std::string& name) = 0;  // STOR

  // Reads the entries of the current remote folder, which stay until the next List.
  virtual int List() = 0;
  virtual int EntryCount() = 0;
  // The entry at index, counted from 0; one without a name when there is none.
  virtual FtpDirEntry Entry(int index) = 0;

  // Tells the client's error hook about a result; returns it.
  virtual int ReportError(int code) = 0;
};

#endif  // MOSAICON_PUBLISH_REMOTE_SERVER_H_
