#include "mirror/folder_store.h"

#include <fstream>
#include <system_error>
#include <thread>

#include "files/path_text.h"
#include "files/write_file.h"
#include "mirror/listing.h"

namespace mirror {

namespace {

namespace fs = std::filesystem;
using Kind = RemoteJob::Kind;

constexpr size_t kPiece = 1 << 20;  // bytes

Outcome OutcomeOf(const std::error_code& failed) {
  if (!failed) return {};
  const std::string words = files::WordsFor(failed);
  if (failed == std::errc::no_such_file_or_directory) return {Fault::kMissing, words};
  if (failed == std::errc::no_space_on_device || words == "the disk is full") return {Fault::kFull, words};
  return {Fault::kRefused, words};
}

Outcome Changed() {
  return {Fault::kLocal, "it cannot be read, or is another one by now"};
}

RemoteEntry EntryOf(const fs::directory_entry& entry) {
  std::error_code failed;
  RemoteEntry found = {.name = files::Utf8Of(entry.path().filename()), .kind = EntryKind::kOther, .size = {}};
  const fs::file_status status = entry.symlink_status(failed);
  if (fs::is_symlink(status)) found.kind = EntryKind::kLink;
  if (fs::is_directory(status)) found.kind = EntryKind::kFolder;
  if (fs::is_regular_file(status)) {
    found.kind = EntryKind::kFile;
    const std::uint64_t size = entry.file_size(failed);
    if (!failed) found.size = size;
  }
  return found;
}

}  // namespace

fs::path FolderStore::PathOf(const std::string& path) const {
  return path.empty() ? m_folder : m_folder / files::PathOf(path);
}

std::vector<FinishedJob> FolderStore::Wait(std::chrono::milliseconds atMost) {
  if (m_waiting.empty()) {
    std::this_thread::sleep_for(atMost);
    return {};
  }
  const auto [id, job] = std::move(m_waiting.front());
  m_waiting.pop_front();
  FinishedJob finished = {.id = id, .outcome = {}, .entries = {}};
  finished.outcome = Do(job, finished.entries);
  return {finished};
}

Outcome FolderStore::Do(const RemoteJob& job, std::vector<RemoteEntry>& entries) {
  std::error_code failed;
  const fs::path path = PathOf(job.path);
  switch (job.kind) {
    case Kind::kList:
      return List(path, entries);
    case Kind::kMakeFolder:
      if (job.path.empty()) {
        fs::create_directories(path, failed);
        return OutcomeOf(failed);
      }
      return OutcomeOf(files::MakeFolder(path));
    case Kind::kSend:
      return Send(job);
    case Kind::kRename:
    case Kind::kReplace:
      return OutcomeOf(files::MoveFileOver(path, PathOf(job.target)));
    case Kind::kDelete:
    case Kind::kRemoveFolder:
      if (!fs::remove(path, failed) && !failed) return {Fault::kMissing, "it is not there"};
      return OutcomeOf(failed);
  }
  return {};
}

Outcome FolderStore::List(const fs::path& folder, std::vector<RemoteEntry>& entries) const {
  std::error_code failed;
  fs::directory_iterator found(folder, failed);
  for (; !failed && found != fs::directory_iterator(); found.increment(failed)) {
    RemoteEntry entry = EntryOf(*found);
    if (IsName(entry.name)) entries.push_back(std::move(entry));
  }
  return OutcomeOf(failed);
}

Outcome FolderStore::Send(const RemoteJob& job) {
  const fs::path path = PathOf(job.path);
  std::error_code failed;
  if (fs::is_symlink(path, failed)) return {Fault::kRefused, "a link is there"};
  std::ifstream source(job.source, std::ios::binary);
  if (!source) return Changed();
  files::LockedFile target;
  if ((failed = target.Open(path)) || (failed = target.CutTo(0))) return OutcomeOf(failed);
  std::string piece(kPiece, '\0');
  std::uint64_t size = 0;
  while (source.read(piece.data(), static_cast<std::streamsize>(piece.size())) || source.gcount() > 0) {
    const auto count = static_cast<size_t>(source.gcount());
    if ((failed = target.Append({piece.data(), count}))) return OutcomeOf(failed);
    size += count;
    m_bytes += count;
  }
  if (!source.eof() || size != job.size) return Changed();
  return OutcomeOf(target.Close());
}

}  // namespace mirror
