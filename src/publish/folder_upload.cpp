#include "publish/folder_upload.h"

#include <vector>

#include "kvtools/kvtools.h"
#include "net/error_codes.h"
#include "publish/remote_names.h"

std::string RemoteNameOfFolder(const std::string& localPath) {
  std::vector<std::string> parts;
  if (KVT_ParseString(localPath, '\\', parts) < 2) return "";
  return RemoteFolderName(parts.back());
}

int FolderUpload::Upload(const std::string& localPath) {
  if (!m_server.IsConnected() || m_host.IsAborted()) return 0;
  const std::string remoteName = RemoteNameOfFolder(localPath);
  if (remoteName.empty()) return 0;
  if (m_server.MakeFolder(remoteName) != kNetSuccess) return 0;
  // Without it the files would land beside the folder.
  if (m_server.ChangeFolder(remoteName) != kNetSuccess) return 0;
  const int uploaded = UploadEntries(localPath);
  if (!m_bLost && m_server.GoToParent() != kNetSuccess) m_bLost = true;
  return uploaded;
}

int FolderUpload::UploadEntries(const std::string& localPath) {
  int uploaded = 0;
  for (const FoundFile& entry : FindFiles(m_local, localPath + "\\*.*")) {
    if (m_host.IsAborted() || m_bLost) break;
    if (entry.isDirectory) {
      uploaded += Upload(entry.path);
    } else if (SendFile(entry.path, entry.name)) {
      ++uploaded;
    }
  }
  return uploaded;
}

bool FolderUpload::SendFile(const std::string& localPath, const std::string& name) {
  const bool isSent = m_server.SendFile(localPath, name) == kNetSuccess;
  const int position = m_host.ProgressPosition() + 1;
  m_host.SetProgressPosition(position);
  m_host.SetProgressCaption(name + " - " + std::to_string(position) + "/" + std::to_string(m_nTotal));
  m_host.PumpMessages();
  return isSent;
}
