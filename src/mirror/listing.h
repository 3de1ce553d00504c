// What servers answer when they are asked what is in a folder: lines of three kinds.
//
//   type=file;size=4321;modify=20260307140500; a name.txt            (MLSD)
//   -rw-r--r--   1 ann  users     4321 Mar  7 14:05 a name.txt       (LIST of Unix, and SFTP)
//   03-07-26  02:05PM                 4321 a name.txt                (LIST of DOS)
//
// Nothing that a server says is believed: a line that is none of these is left out, and so is one whose name
// is empty, ".", "..", has a "/" or a control character in it, or came before. Names stay the bytes that they
// are. Nothing fails. Any thread.
#ifndef MOSAICON_MIRROR_LISTING_H_
#define MOSAICON_MIRROR_LISTING_H_

#include <string_view>
#include <vector>

#include "mirror/remote_store.h"

namespace mirror {

struct Listing {
  std::vector<RemoteEntry> entries;
  bool isUnderstood = true;  // false: there is a line that could be anything
};
Listing ParseListing(std::string_view text);

// Whether a name may stand in a path and in a command.
bool IsName(std::string_view name);

}  // namespace mirror

#endif  // MOSAICON_MIRROR_LISTING_H_
