#include <windows.h>

#include <memory>

#include "files/read_file.h"
#include "files/system_files.h"
#include "handles/unique_handle.h"

namespace {

constexpr DWORD kMaxPath = 4096;

struct FindCloser {
  void operator()(HANDLE search) const { FindClose(search); }
};
using Search = std::unique_ptr<void, FindCloser>;

// Without regard to case, as the file system sees names.
std::string Fold(std::string path) {
  CharLowerBuffA(path.data(), static_cast<DWORD>(path.size()));
  return path;
}

bool HasAttribute(const std::string& path, DWORD attribute) {
  const DWORD attributes = GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & attribute) != 0;
}

// The number that the disk has for a file; empty where there are none, as on some network and memory
// disks.
std::string NumberOf(HANDLE file) {
  BY_HANDLE_FILE_INFORMATION info;
  if (!GetFileInformationByHandle(file, &info) || (info.nFileIndexHigh == 0 && info.nFileIndexLow == 0)) {
    return "";
  }
  const unsigned long long number =
      (static_cast<unsigned long long>(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
  return std::to_string(info.dwVolumeSerialNumber) + ":" + std::to_string(number);
}

// Empty where the system cannot tell.
std::string FinalPathOf(HANDLE file) {
  char path[kMaxPath];
  const DWORD length = GetFinalPathNameByHandleA(file, path, kMaxPath, FILE_NAME_NORMALIZED);
  return length > 0 && length < kMaxPath ? Fold(std::string(path, length)) : std::string();
}

}  // namespace

bool SystemFiles::Exists(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool SystemFiles::IsFolder(const std::string& path) {
  return HasAttribute(path, FILE_ATTRIBUTE_DIRECTORY);
}

bool SystemFiles::Find(const std::string& pattern, std::vector<FoundFile>& found) {
  found.clear();
  WIN32_FIND_DATAA data;
  const HANDLE handle = FindFirstFileA(pattern.c_str(), &data);
  if (handle == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND;
  const Search search(handle);
  const std::string folder = pattern.substr(0, pattern.find_last_of("\\/:") + 1);
  do {
    const std::string name = data.cFileName;
    if (name == "." || name == "..") continue;
    found.push_back({folder + name, name, (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0});
  } while (FindNextFileA(search.get(), &data));
  return GetLastError() == ERROR_NO_MORE_FILES;
}

std::optional<std::string> SystemFiles::Read(const std::string& path, size_t maxBytes) {
  return ReadFileUpTo(path, maxBytes);
}

std::optional<std::uint64_t> SystemFiles::WriteTime(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
  return (static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) |
         data.ftLastWriteTime.dwLowDateTime;
}

std::string SystemFiles::FullPath(const std::string& path) {
  char full[kMaxPath];
  const DWORD length = GetFullPathNameA(path.c_str(), kMaxPath, full, nullptr);
  return length > 0 && length < kMaxPath ? std::string(full, length) : path;
}

std::string SystemFiles::Identity(const std::string& path) {
  const UniqueHandle file(CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (file.get() == INVALID_HANDLE_VALUE) return Exists(path) ? Fold(FullPath(path)) : std::string();
  std::string identity = NumberOf(file.get());
  if (identity.empty()) identity = FinalPathOf(file.get());
  return identity.empty() ? Fold(FullPath(path)) : identity;
}

bool SystemFiles::CreateFolder(const std::string& path) {
  return CreateDirectoryA(path.c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS;
}

bool SystemFiles::Delete(const std::string& path) {
  return DeleteFileA(path.c_str()) != FALSE;
}

bool SystemFiles::Rename(const std::string& source, const std::string& target) {
  return MoveFileA(source.c_str(), target.c_str()) != FALSE;
}

bool SystemFiles::Copy(const std::string& source, const std::string& target) {
  // Not left to the system: Wine writes over what its user may write over.
  return !HasAttribute(target, FILE_ATTRIBUTE_READONLY) &&
         CopyFileA(source.c_str(), target.c_str(), FALSE) != FALSE;
}
