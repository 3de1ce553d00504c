// Copies a local folder, with everything below it, into a new folder of the same name in the current
// remote folder. Blanks in the names of folders become underscores; those of files stay.
//
// A file that cannot be sent, and a folder that cannot be made, is left out and the rest goes on; a local
// folder that cannot be read is like an empty one, save for the count of files to upload. An
// abort ends it at the next entry. At the end the current remote folder is again what it was; when the
// server cannot be brought back there, the upload stops rather than go on in the wrong folder.
//
// Portable. Thread of the user interface.
#ifndef MOSAICON_PUBLISH_FOLDER_UPLOAD_H_
#define MOSAICON_PUBLISH_FOLDER_UPLOAD_H_

#include <string>

#include "files/file_system.h"
#include "publish/publish_host.h"
#include "publish/remote_server.h"

// The remote name of a local folder, made of its last component; empty for a path of one component,
// such as a drive, and for one that ends in a backslash.
std::string RemoteNameOfFolder(const std::string& localPath);

class FolderUpload {
 public:
  // All must outlive it. total is how many files the progress bar is set to.
  FolderUpload(RemoteServer& server, FileSystem& local, PublishHost& host, int total)
      : m_server(server), m_local(local), m_host(host), m_nTotal(total) {}

  // Returns the number of files that were uploaded without error.
  int Upload(const std::string& localPath);

 private:
  int UploadEntries(const std::string& localPath);
  bool SendFile(const std::string& localPath, const std::string& name);

  RemoteServer& m_server;
  FileSystem& m_local;
  PublishHost& m_host;
  const int m_nTotal;
  bool m_bLost = false;  // the server is not where we think it is
};

#endif  // MOSAICON_PUBLISH_FOLDER_UPLOAD_H_
