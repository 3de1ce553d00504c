// A folder on a server (or a mounted disk) as the publication of a map sees it: a handful of jobs that run
// side by side, each with one outcome. curl_store.h speaks with servers, folder_store.h with a folder of this
// computer; tests take testing/fake_store.h, in memory and with every fault that one asks for.
//
// Paths are UTF-8, with "/" between names, relative to the folder of the store: "" is that folder itself.
// One thread. Nothing throws for what a server does.
#ifndef MOSAICON_MIRROR_REMOTE_STORE_H_
#define MOSAICON_MIRROR_REMOTE_STORE_H_

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace mirror {

enum class EntryKind { kFile, kFolder, kLink, kOther };

struct RemoteEntry {
  std::string name;  // one name, never "", "." or "..", without "/" and control characters
  EntryKind kind = EntryKind::kFile;
  std::optional<std::uint64_t> size;  // bytes; nullopt where the server does not tell
};

struct RemoteJob {
  enum class Kind {
    kList,          // what is in the folder path
    kMakeFolder,    // fails when it is there; of "" with all that is missing above it, of others one level
    kSend,          // the file source becomes path, in place of what is there
    kRename,        // path becomes target; where target is there, it takes its place if the server can
    kReplace,       // the same, and target is there: it may be missing for a moment
    kDelete,        // a file, or a link and not what it leads to
    kRemoveFolder,  // an empty one
  };
  Kind kind = Kind::kList;
  std::string path;
  std::string target;            // kRename, kReplace
  std::filesystem::path source;  // kSend
  std::uint64_t size = 0;        // kSend: bytes of source; another number is a fault
};

enum class Fault {
  kNone,
  kMissing,    // there is no such thing, as far as the server says
  kRefused,    // the server does not want to: rights, names, rules of its own
  kFull,       // no space left, or more than this user may have
  kLocal,      // the file of this computer cannot be read, or is another one by now
  kIllegible,  // what the server lists is not understood
  kLost,       // no connection, or it broke: the same may work in a moment
  kTooMany,    // no further connection is welcome
  kHopeless,   // host, login, certificate, key of the host: nothing will work
};

struct Outcome {
  Fault fault = Fault::kNone;
  std::string text;  // UTF-8, for people: what the server or the system said
};

struct FinishedJob {
  std::uint64_t id = 0;
  Outcome outcome;
  std::vector<RemoteEntry> entries;  // kList
};

class RemoteStore {
 public:
  virtual ~RemoteStore() = default;

  // Begins a job and returns. It may wait for a free connection. id is the caller's own and comes back once.
  virtual void Start(std::uint64_t id, const RemoteJob& job) = 0;
  // Returns what has finished meanwhile, at the latest after this time; at once when something has.
  virtual std::vector<FinishedJob> Wait(std::chrono::milliseconds atMost) = 0;
  // Gives up all jobs that run, within a second. What they were about may or may not have happened; nothing
  // is heard of them any more.
  virtual void Cancel() = 0;
  // Jobs that run at the same time from now on share so many connections, one at least.
  virtual void SetConnections(int count) = 0;
  // Bytes of files that went out, also of those that were sent in vain.
  virtual std::uint64_t BytesSent() const = 0;
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_REMOTE_STORE_H_
