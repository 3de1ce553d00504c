// Where a map is published to, as people type it:
//
//   ftp://[user@]host[:port]/folder     encrypted (TLS) when the server offers it
//   ftpes://...                         encrypted, or not at all; explicit TLS
//   ftps://...                          encrypted from the first byte on; implicit TLS
//   sftp://...                          by SSH; a folder that begins with "~/" lies in the user's own
//   file:///C:/web/maps                 a folder of this computer, or one that is mounted
//
// Without a scheme it is ftp. Portable; any thread.
#ifndef MOSAICON_MIRROR_PUBLISH_ADDRESS_H_
#define MOSAICON_MIRROR_PUBLISH_ADDRESS_H_

#include <string>

namespace mirror {

enum class Scheme { kFtp, kFtpes, kFtps, kSftp, kFile };

struct PublishAddress {
  Scheme scheme = Scheme::kFtp;
  std::string user;  // empty when it is not in the address
  std::string host;  // without the brackets of a number; empty for kFile
  int port = 0;      // 0: that of the scheme
  std::string path;  // UTF-8, without percent signs, without "/" at its end; "" for the folder of the login

  // The same text for all that mean the same place, without a secret in it.
  std::string Text() const;
  // Of the place below it that has this name.
  PublishAddress Below(const std::string& name) const;
};

// Returns an empty text, or one sentence that says what is wrong. A password in the address is refused:
// addresses are shown, written down and seen by who looks at running programs.
std::string ParsePublishAddress(const std::string& text, PublishAddress& address);

const char* NameOf(Scheme scheme);
int PortOf(const PublishAddress& address);

// The path as a part of a URL.
std::string PercentEncoded(const std::string& path);

}  // namespace mirror

#endif  // MOSAICON_MIRROR_PUBLISH_ADDRESS_H_
