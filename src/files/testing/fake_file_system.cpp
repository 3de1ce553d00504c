#include "files/testing/fake_file_system.h"

#include <algorithm>
#include <cctype>

#include "files/name_pattern.h"

namespace {

constexpr std::size_t kMaxName = 255;
constexpr std::size_t kMaxPath = 4096;

std::string WithBackslashes(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

std::string ParentOf(const std::string& full) {
  return full.substr(0, full.rfind('\\'));
}

std::string NameOf(const std::string& full) {
  return full.substr(full.rfind('\\') + 1);
}

// How many characters of an absolute path its root takes, without a separator at its end: "c:", or
// "\\server\share".
std::size_t RootLength(const std::string& path) {
  if (path.size() > 1 && path[1] == ':') return 2;
  if (!path.starts_with("\\\\")) return 0;
  const std::size_t share = path.find('\\', 2);
  return share == std::string::npos ? path.size() : std::min(path.find('\\', share + 1), path.size());
}

// Puts the components of a path after those of base, which is full.
std::string Append(std::string base, const std::string& path) {
  const std::size_t root = RootLength(base);
  for (std::size_t begin = 0; begin < path.size();) {
    const std::size_t end = std::min(path.find('\\', begin), path.size());
    const std::string part = path.substr(begin, end - begin);
    if (part == "..") {
      if (base.size() > root) base = ParentOf(base);
    } else if (!part.empty() && part != ".") {
      base += "\\" + part;
    }
    begin = end + 1;
  }
  return base;
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return text;
}

bool IsName(const std::string& name) {
  return !name.empty() && name.size() <= kMaxName && name.find_first_of("*?") == std::string::npos;
}

}  // namespace

FakeFileSystem::FakeFileSystem(std::vector<std::string>* changes) : m_changes(changes) {
  SetCurrentFolder("C:\\work");
}

void FakeFileSystem::SetCurrentFolder(const std::string& path) {
  m_currentFolder = path;
  PutFolder(path);
}

void FakeFileSystem::Note(const std::string& change) {
  if (m_changes != nullptr) m_changes->push_back(change);
}

std::string FakeFileSystem::FullPath(const std::string& path) {
  if (path.empty() || path.size() >= kMaxPath) return path;
  const std::string text = WithBackslashes(path);
  const std::size_t root = RootLength(text);
  const std::string rest = text.substr(root);
  const std::string drive = m_currentFolder.substr(0, RootLength(m_currentFolder));
  std::string base = root > 0 ? text.substr(0, root) : drive;
  if (!rest.starts_with('\\') && Lower(base) == Lower(drive)) base = m_currentFolder;
  const std::string full = Append(base, rest);
  return full.size() == RootLength(full) || text.back() == '\\' ? full + '\\' : full;
}

// What all the ways to write one path have in common.
std::string FakeFileSystem::Key(const std::string& path) {
  std::string full = FullPath(path);
  if (full.ends_with('\\')) full.pop_back();
  return Lower(full);
}

FakeFileSystem::Entry* FakeFileSystem::Look(const std::string& path) {
  const std::string key = Key(path);
  const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                  [&key](const Entry& entry) { return Lower(entry.path) == key; });
  return found != m_entries.end() ? &*found : nullptr;
}

FakeFileSystem::Contents* FakeFileSystem::LookForFile(const std::string& path) {
  Entry* entry = Look(path);
  return entry != nullptr ? entry->file.get() : nullptr;
}

bool FakeFileSystem::IsFree(const std::string& path) {
  const std::string key = Key(path);
  return !Exists(path) && IsName(NameOf(key)) && IsFolder(ParentOf(key) + '\\') && !m_refused.contains(key);
}

void FakeFileSystem::PutFolder(const std::string& path) {
  if (Exists(path)) return;
  std::string full = FullPath(path);
  if (full.ends_with('\\')) full.pop_back();
  if (full.size() > RootLength(full)) PutFolder(ParentOf(full) + '\\');
  m_entries.push_back({full, nullptr});
}

void FakeFileSystem::Put(const std::string& path, const std::string& bytes) {
  if (Contents* file = LookForFile(path)) {
    file->bytes = bytes;
    file->writeTime = ++m_clock;
    return;
  }
  const std::string full = FullPath(path);
  PutFolder(ParentOf(full) + '\\');
  m_entries.push_back({full, std::make_shared<Contents>(Contents{bytes, ++m_clock})});
}

void FakeFileSystem::Link(const std::string& path, const std::string& target) {
  const std::shared_ptr<Contents> file = Look(target)->file;
  const std::string full = FullPath(path);
  PutFolder(ParentOf(full) + '\\');
  m_entries.push_back({full, file});
}

void FakeFileSystem::Remove(const std::string& path) {
  const std::string key = Key(path);
  std::erase_if(m_entries, [&key](const Entry& entry) {
    const std::string other = Lower(entry.path);
    return other == key || other.starts_with(key + '\\');
  });
}

void FakeFileSystem::SetReadOnly(const std::string& path, bool readOnly) {
  LookForFile(path)->isReadOnly = readOnly;
}

void FakeFileSystem::SetInUse(const std::string& path, bool inUse) {
  LookForFile(path)->isInUse = inUse;
}

void FakeFileSystem::Refuse(const std::string& path, bool refused) {
  if (refused) {
    m_refused.insert(Key(path));
  } else {
    m_refused.erase(Key(path));
  }
}

bool FakeFileSystem::Exists(const std::string& path) {
  return Look(path) != nullptr;
}

bool FakeFileSystem::IsFolder(const std::string& path) {
  const Entry* entry = Look(path);
  return entry != nullptr && entry->file == nullptr;
}

bool FakeFileSystem::Find(const std::string& pattern, std::vector<FoundFile>& found) {
  found.clear();
  const std::size_t nameBegin = pattern.find_last_of("\\/:") + 1;
  const std::string folder = pattern.substr(0, nameBegin);
  const std::string where = folder.empty() ? "." : folder;
  if (!IsFolder(where)) return false;
  const std::string key = Key(where);
  for (const Entry& entry : m_entries) {
    const std::string name = NameOf(entry.path);
    const bool isInFolder = entry.path.size() > key.size() && Lower(ParentOf(entry.path)) == key;
    if (isInFolder && MatchesPattern(name, pattern.substr(nameBegin))) {
      found.push_back({folder + name, name, entry.file == nullptr});
    }
  }
  return true;
}

std::optional<std::string> FakeFileSystem::Read(const std::string& path, std::size_t maxBytes) {
  const Contents* file = LookForFile(path);
  if (file == nullptr || file->bytes.size() > maxBytes) return std::nullopt;
  return file->bytes;
}

std::optional<std::uint64_t> FakeFileSystem::WriteTime(const std::string& path) {
  const Contents* file = LookForFile(path);
  return file != nullptr ? std::optional(file->writeTime) : std::nullopt;
}

std::string FakeFileSystem::Identity(const std::string& path) {
  const Entry* entry = Look(path);
  if (entry == nullptr) return "";
  // A file is the one of its first name.
  for (const Entry& each : m_entries) {
    if (entry->file != nullptr && each.file == entry->file) return Lower(each.path);
  }
  return Lower(entry->path);
}

bool FakeFileSystem::CreateFolder(const std::string& path) {
  Note("create " + path);
  if (IsRefused(path)) return false;
  if (Exists(path)) return true;
  if (!IsFree(path)) return false;
  PutFolder(path);
  return true;
}

bool FakeFileSystem::Delete(const std::string& path) {
  Note("delete " + path);
  const Contents* file = LookForFile(path);
  if (file == nullptr || file->isReadOnly || file->isInUse || IsRefused(path)) return false;
  Remove(path);
  return true;
}

bool FakeFileSystem::Rename(const std::string& source, const std::string& target) {
  Note("rename " + source + " -> " + target);
  const Entry* entry = Look(source);
  if (entry == nullptr || IsRefused(source) || !IsFree(target)) return false;
  if (entry->file != nullptr && entry->file->isInUse) return false;
  const std::string from = entry->path;
  for (Entry& each : m_entries) {
    const bool isBelow = each.path.starts_with(from + '\\');
    if (isBelow || each.path == from) each.path = FullPath(target) + each.path.substr(from.size());
  }
  return true;
}

bool FakeFileSystem::Copy(const std::string& source, const std::string& target) {
  Note("copy " + source + " -> " + target);
  const Contents* file = LookForFile(source);
  if (file == nullptr || IsRefused(target)) return false;
  Contents* old = LookForFile(target);
  if (old == nullptr && !IsFree(target)) return false;
  if (old == file || (old != nullptr && (old->isReadOnly || old->isInUse))) return false;
  const bool isReadOnly = file->isReadOnly;
  Put(target, file->bytes);
  LookForFile(target)->isReadOnly = isReadOnly;
  return true;
}
