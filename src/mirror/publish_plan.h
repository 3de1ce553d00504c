// What has to be done so that a folder on a server is what a folder of this computer is. A plan is made of
// what both hold and of what was sent before; it changes nothing. Portable; any thread.
//
// Nothing on the server is replaced before everything new is there: what somebody may be looking at is sent
// under a staged name and gets its own at the end, pages and KML after what they show. Only a map that nobody
// sees yet, because none of its pages is there, has its tiles sent under their own names.
#ifndef MOSAICON_MIRROR_PUBLISH_PLAN_H_
#define MOSAICON_MIRROR_PUBLISH_PLAN_H_

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "mirror/local_tree.h"
#include "mirror/manifest.h"
#include "mirror/remote_store.h"

namespace mirror {

using RemoteTree = std::map<std::string, RemoteEntry>;  // by path

struct PlannedFile {
  LocalFile file;
  int rank = 0;           // those of a higher one are placed later, see RankOf
  bool isStaged = false;  // goes by its staged name first
  bool isSent = false;    // and is there already under that name
  bool replaces = false;  // something has its final name
};

struct PublishPlan {
  std::vector<std::string> newFolders;  // each before what is in it
  std::vector<PlannedFile> files;       // to be sent or placed, in the order of rank and path
  std::vector<std::string> unchanged;   // files that are there as they should be
  // Only on the server: files and links, and folders, each behind what is in it. Names that begin with a dot
  // are left out: they are settings of the web server.
  std::vector<std::string> extraFiles;
  std::vector<std::string> extraFolders;
  // Left by an earlier run under a staged name, and of no use any more.
  std::vector<std::string> leftovers;
  // What stands in the way; sentences. A plan with any cannot be carried out whole.
  std::vector<std::string> problems;

  std::uint64_t BytesToSend() const;
  std::size_t FilesToSend() const;
};

// 0 for what pages and KML show, 1 to 10 for these: the higher up in the folder the later.
int RankOf(const std::string& path);

// checksumOf tells what a file of this computer holds, nullopt when it cannot be read; it is asked only where
// size and time leave a doubt.
PublishPlan MakePlan(const LocalTree& local, const RemoteTree& remote, const SentFiles& sent,
                     const std::function<std::optional<std::string>(const LocalFile&)>& checksumOf);

}  // namespace mirror

#endif  // MOSAICON_MIRROR_PUBLISH_PLAN_H_
