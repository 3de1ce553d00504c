// Which names of a remote listing may be used. A server can list anything; a name that would leave the
// folder it stands in, or that is no name at all, must never reach a command.
#ifndef MOSAICON_PUBLISH_REMOTE_NAMES_H_
#define MOSAICON_PUBLISH_REMOTE_NAMES_H_

#include <string>

// False for "", ".", "..", and for a name with a slash, a backslash or a control character in it.
bool IsPlainRemoteName(const std::string& name);

// The remote name of a local folder: blanks become underscores.
std::string RemoteFolderName(std::string localName);

// What to put into a command for a plain name. Servers take a leading "~" for somebody's home folder,
// which "./" before it prevents.
std::string RemotePath(const std::string& name);

#endif  // MOSAICON_PUBLISH_REMOTE_NAMES_H_
