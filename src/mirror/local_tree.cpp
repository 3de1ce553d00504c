#include "mirror/local_tree.h"

#include <algorithm>
#include <system_error>

#include "files/path_text.h"
#include "files/unfinished.h"
#include "files/write_file.h"
#include "mirror/listing.h"
#include "mirror/staged_name.h"

namespace mirror {

namespace {

namespace fs = std::filesystem;

class Reader {
 public:
  explicit Reader(LocalTree& tree) : m_tree(tree) {}

  void ReadFolder(const fs::path& folder, const std::string& path) {
    std::error_code failed;
    fs::directory_iterator entries(folder, failed);
    std::vector<fs::directory_entry> found;
    for (; !failed && entries != fs::directory_iterator(); entries.increment(failed))
      found.push_back(*entries);
    if (failed) Complain(path.empty() ? files::Utf8Of(folder) : path, files::WordsFor(failed));
    for (const fs::directory_entry& entry : found) Read(entry, path);
  }

 private:
  void Read(const fs::directory_entry& entry, const std::string& parent) {
    const std::string name = files::Utf8Of(entry.path().filename());
    const std::string path = parent.empty() ? name : parent + "/" + name;
    if (name.starts_with(files::kJournalName)) {
      Complain(parent.empty() ? name : parent, "the map is not finished; make it again");
      return;
    }
    if (name.ends_with(files::kPartialSuffix)) return;
    std::error_code failed;
    const fs::file_status status = entry.status(failed);
    if (!IsName(name) || IsStagedName(name)) {
      Complain(path, "a file of this name cannot be published");
    } else if (fs::is_directory(status)) {
      if (entry.is_symlink(failed)) return Complain(path, "it is a link to a folder");
      m_tree.folders.push_back(path);
      ReadFolder(entry.path(), path);
    } else if (const auto state = StateOf(entry.path())) {
      m_tree.files.push_back({.path = path, .source = entry.path(), .state = *state});
    } else {
      Complain(path, failed ? files::WordsFor(failed) : "it is no file");
    }
  }

  void Complain(const std::string& path, const std::string& why) {
    m_tree.problems.push_back(path + ": " + why);
  }

  LocalTree& m_tree;
};

}  // namespace

LocalTree ReadLocalTree(const fs::path& folder) {
  LocalTree tree;
  Reader(tree).ReadFolder(folder, "");
  std::sort(tree.files.begin(), tree.files.end(),
            [](const LocalFile& left, const LocalFile& right) { return left.path < right.path; });
  std::sort(tree.folders.begin(), tree.folders.end());
  std::sort(tree.problems.begin(), tree.problems.end());
  return tree;
}

std::optional<FileState> StateOf(const fs::path& file) {
  std::error_code failed;
  if (!fs::is_regular_file(file, failed)) return std::nullopt;
  const std::uint64_t size = fs::file_size(file, failed);
  if (failed) return std::nullopt;
  const auto time = fs::last_write_time(file, failed);
  if (failed) return std::nullopt;
  return FileState{.size = size, .time = static_cast<std::int64_t>(time.time_since_epoch().count())};
}

}  // namespace mirror
