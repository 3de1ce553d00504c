#include "publish/index_upload.h"

#include <cstdio>

#include "kvtools/kvtools.h"
#include "kvtools/split_path.h"
#include "net/error_codes.h"

namespace {

bool WriteText(const std::string& path, const std::string& text) {
  std::FILE* file = std::fopen(path.c_str(), "w+");
  if (file == nullptr) return false;
  const bool written = std::fputs(text.c_str(), file) >= 0;
  // A full disk may show only here.
  return std::fclose(file) == 0 && written;
}

}  // namespace

std::string LocalIndexPath(const std::string& folder) {
  if (folder.empty()) return "";
  const PathParts parts = SplitPath(KVT_OptimizePath(folder, 1));
  return JoinPath(parts.drive, parts.directory, "index", "html");
}

int UploadIndexPage(RemoteServer& server, const std::string& localPath, const std::string& page) {
  if (!server.IsConnected() || !WriteText(localPath, page)) return 0;
  // There may be none yet.
  server.RemoveFile(kIndexPageName);
  return server.SendFile(localPath, kIndexPageName) == kNetSuccess ? 1 : 0;
}
