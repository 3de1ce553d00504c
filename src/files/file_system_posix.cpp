#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include "files/name_pattern.h"
#include "files/read_file.h"
#include "files/system_files.h"

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kNanoseconds = 1'000'000'000;

struct FolderCloser {
  void operator()(DIR* folder) const { closedir(folder); }
};
using Folder = std::unique_ptr<DIR, FolderCloser>;

// As this system writes it.
std::string Native(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

// What Windows calls read-only: nobody may write, whoever asks.
bool IsReadOnly(const std::string& native) {
  struct stat status = {};
  return lstat(native.c_str(), &status) == 0 && (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

bool SystemFiles::Exists(const std::string& path) {
  struct stat status = {};
  return lstat(Native(path).c_str(), &status) == 0;
}

bool SystemFiles::IsFolder(const std::string& path) {
  struct stat status = {};
  return stat(Native(path).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool SystemFiles::Find(const std::string& pattern, std::vector<FoundFile>& found) {
  found.clear();
  const std::string native = Native(pattern);
  const size_t nameBegin = native.rfind('/') + 1;
  const std::string folderPath = native.substr(0, nameBegin);
  const Folder folder(opendir(folderPath.empty() ? "." : folderPath.c_str()));
  if (!folder) return false;
  errno = 0;
  while (const dirent* entry = readdir(folder.get())) {
    const std::string name = entry->d_name;
    // With a "\" in it, it would name something else.
    const bool hasPath = name != "." && name != ".." && name.find('\\') == std::string::npos;
    if (hasPath && MatchesPattern(name, native.substr(nameBegin))) {
      found.push_back({folderPath + name, name, IsFolder(folderPath + name)});
    }
    errno = 0;
  }
  return errno == 0;
}

std::optional<std::string> SystemFiles::Read(const std::string& path, size_t maxBytes) {
  return ReadFileUpTo(Native(path), maxBytes);
}

std::optional<std::uint64_t> SystemFiles::WriteTime(const std::string& path) {
  struct stat status = {};
  if (stat(Native(path).c_str(), &status) != 0) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_mtim.tv_sec) * kNanoseconds +
         static_cast<std::uint64_t>(status.st_mtim.tv_nsec);
}

std::string SystemFiles::FullPath(const std::string& path) {
  if (path.empty() || path.size() >= PATH_MAX) return path;
  std::error_code error;
  std::string full = fs::absolute(Native(path), error).lexically_normal().string();
  if (error) return path;
  // "a/." is "a", where only "a/" keeps its separator.
  const bool separated = path.back() == '\\' || path.back() == '/';
  if (!separated && full.size() > 1 && full.back() == '/') full.pop_back();
  return full;
}

std::string SystemFiles::Identity(const std::string& path) {
  struct stat status = {};
  if (stat(Native(path).c_str(), &status) != 0) return "";
  return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

bool SystemFiles::CreateFolder(const std::string& path) {
  return mkdir(Native(path).c_str(), S_IRWXU | S_IRWXG | S_IRWXO) == 0 || errno == EEXIST;
}

bool SystemFiles::Delete(const std::string& path) {
  const std::string native = Native(path);
  return !IsReadOnly(native) && unlink(native.c_str()) == 0;
}

bool SystemFiles::Rename(const std::string& source, const std::string& target) {
  const std::string from = Native(source);
  const std::string to = Native(target);
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  // Not every disk can do that at once.
  if (errno != EINVAL && errno != ENOSYS) return false;
  return !Exists(to) && std::rename(from.c_str(), to.c_str()) == 0;
}

bool SystemFiles::Copy(const std::string& source, const std::string& target) {
  const std::string to = Native(target);
  std::error_code error;
  return !IsReadOnly(to) && fs::copy_file(Native(source), to, fs::copy_options::overwrite_existing, error);
}
