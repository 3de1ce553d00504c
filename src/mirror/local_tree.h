// The files of a folder that is to be published. Portable; any thread.
#ifndef MOSAICON_MIRROR_LOCAL_TREE_H_
#define MOSAICON_MIRROR_LOCAL_TREE_H_

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace mirror {

// A file as it was when somebody looked: another one since then has another size or time.
struct FileState {
  std::uint64_t size = 0;  // bytes
  std::int64_t time = 0;   // of its last change, in units of the system
  bool operator==(const FileState&) const = default;
};

struct LocalFile {
  std::string path;  // below the folder, UTF-8, "/" between names
  std::filesystem::path source;
  FileState state;
};

struct LocalTree {
  std::vector<LocalFile> files;      // in the order of their paths
  std::vector<std::string> folders;  // below it, each before what is in it
  // What could not be read or cannot be published, and why; sentences in UTF-8. A tree with any is not whole.
  std::vector<std::string> problems;
};

// Links to files count as files; links to folders are problems: they may lead in a circle. A map that is not
// finished is a problem, too.
LocalTree ReadLocalTree(const std::filesystem::path& folder);

// nullopt when there is no such file.
std::optional<FileState> StateOf(const std::filesystem::path& file);

}  // namespace mirror

#endif  // MOSAICON_MIRROR_LOCAL_TREE_H_
