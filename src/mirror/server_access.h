// How to get into a server, and how to know that it is the right one.
#ifndef MOSAICON_MIRROR_SERVER_ACCESS_H_
#define MOSAICON_MIRROR_SERVER_ACCESS_H_

#include <cstdint>
#include <filesystem>
#include <string>

namespace mirror {

struct ServerAccess {
  std::string user;      // UTF-8; empty: that of the netrc file, or nobody in particular
  std::string password;  // UTF-8
  std::filesystem::path netrcFile;

  // sftp
  std::filesystem::path keyFile;  // of the user; PEM or OpenSSH
  std::string keyPassphrase;
  bool useAgent = false;
  std::filesystem::path knownHosts;  // keys of hosts; new ones are added to it
  std::string acceptedHostKey;       // "SHA256:...": of a host that is not in it yet

  // ftp, ftpes, ftps: certificates that are believed besides those of the system; PEM
  std::filesystem::path certificates;

  std::uint64_t bytesPerSecond = 0;  // at most, of all connections together; 0: as fast as it goes
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_SERVER_ACCESS_H_
