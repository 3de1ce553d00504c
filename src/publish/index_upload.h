// Puts the index page on the server. Portable; user-interface thread.
#ifndef MOSAICON_PUBLISH_INDEX_UPLOAD_H_
#define MOSAICON_PUBLISH_INDEX_UPLOAD_H_

#include <string>

#include "publish/remote_server.h"

// The page's name on the server, where it stands beside the folders that it is about.
inline constexpr char kIndexPageName[] = "index.html";

// "index.html" in a local folder; empty when there is no folder.
std::string LocalIndexPath(const std::string& folder);

// Writes page to the local file, with the system's line ends, and sends it in place of "index.html" in
// the current remote folder. The local file stays. Returns 1 when the page is on the server; 0 without a
// connection, when the file cannot be written (the remote page is then as it was), or when it could not
// be sent (the remote page is then gone). Between the old page and the new one there is none: callers see
// to it that nobody can stop this.
int UploadIndexPage(RemoteServer& server, const std::string& localPath, const std::string& page);

#endif  // MOSAICON_PUBLISH_INDEX_UPLOAD_H_
