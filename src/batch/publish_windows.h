// mosaicon-batch --publish on Windows: where passwords come from, and what a console shows. Win32, main
// thread.
#ifndef MOSAICON_BATCH_PUBLISH_WINDOWS_H_
#define MOSAICON_BATCH_PUBLISH_WINDOWS_H_

#include <optional>
#include <string>
#include <vector>

#include "mirror/publish_address.h"

struct StoredLogin {
  std::string user;  // UTF-8
  std::string password;
};

// What the user has told Windows about this server: a generic credential whose address is "Mosaicon/" and the
// host. nullopt when there is none, or when it is that of somebody else than the address names.
std::optional<StoredLogin> FindStoredLogin(const mirror::PublishAddress& address);

// All of it: arguments, passwords, publication. Returns the program's exit code.
int PublishFromCommandLine(const std::vector<std::string>& words);

#endif  // MOSAICON_BATCH_PUBLISH_WINDOWS_H_
