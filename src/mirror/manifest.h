// What was sent to one folder on one server: a file on this computer, to which each success is added at once,
// so that a run that is killed leaves the next one all that it knew. Who has it open keeps other runs out.
//
//   mosaicon-manifest 1 sftp://ann@example.org/maps/harbour
//   placed <checksum> <bytes> <time> <path>      the file is on the server
//   staged <checksum> <bytes> <time> <path>      it is there under its staged name
//   gone <path>                                  it is not, or nobody knows
//
// Lines end in "\n"; the last one of a path counts; what is no line of these is left out, and so is a last
// line without its end. One thread.
#ifndef MOSAICON_MIRROR_MANIFEST_H_
#define MOSAICON_MIRROR_MANIFEST_H_

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "files/write_file.h"
#include "mirror/local_tree.h"

namespace mirror {

struct SentFile {
  std::string checksum;   // see checksum.h
  FileState state;        // as it was sent
  bool isPlaced = false;  // false: it waits under its staged name
  bool operator==(const SentFile&) const = default;
};

using SentFiles = std::map<std::string, SentFile>;  // by path

// Those of another place are none.
SentFiles ParseManifest(std::string_view text, const std::string& place);
std::string ManifestOf(const SentFiles& files, const std::string& place);

class Manifest {
 public:
  // Reads what is there, in the folder that all manifests share; place: as in the first line. Returns an
  // empty text, or one sentence that says why nothing should be published now. A manifest that cannot be
  // written is none of these reasons: then everything works, and the next run knows less.
  std::string Open(const std::filesystem::path& folder, const std::string& place);

  const SentFile* Find(const std::string& path) const;
  const SentFiles& Files() const { return m_files; }
  void Note(const std::string& path, const SentFile& file);
  void Forget(const std::string& path);
  // Why something could not be kept; empty when all was.
  const std::string& Failure() const { return m_failure; }

 private:
  void Append(const std::string& text);

  SentFiles m_files;
  files::LockedFile m_file;
  std::string m_failure;
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_MANIFEST_H_
