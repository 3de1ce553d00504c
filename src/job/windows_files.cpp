#include "job/windows_files.h"

#include <windows.h>

#include <fstream>

#include "files/system_files.h"
#include "job/kml_links.h"
#include "job/preview_image.h"

namespace {

constexpr DWORD kMaxVariable = 32767;
constexpr DWORD kMaxPath = 4096;

// Without regard to case, as the file system sees names.
std::string Fold(std::string path) {
  CharLowerBuffA(path.data(), static_cast<DWORD>(path.size()));
  return path;
}

}  // namespace

std::string WindowsFiles::FullPath(const std::string& path) {
  char full[kMaxPath];
  const DWORD length = GetFullPathNameA(path.c_str(), kMaxPath, full, nullptr);
  return length > 0 && length < kMaxPath ? std::string(full, length) : path;
}

// Sees through short names, links, substituted and mapped drives. Where the system cannot, on some
// network or memory disks, the full path has to do.
std::string WindowsFiles::Identity(const std::string& path) {
  const HANDLE file = CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return Exists(path) ? Fold(FullPath(path)) : std::string();
  char final[kMaxPath];
  const DWORD length = GetFinalPathNameByHandleA(file, final, kMaxPath, FILE_NAME_NORMALIZED);
  CloseHandle(file);
  return Fold(length > 0 && length < kMaxPath ? std::string(final, length) : FullPath(path));
}

std::optional<std::string> WindowsFiles::Read(const std::string& path, size_t maxBytes) {
  std::ifstream file(path, std::ios::binary);
  std::string text(maxBytes + 1, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (!file.eof()) return std::nullopt;
  text.resize(static_cast<size_t>(file.gcount()));
  return text;
}

bool WindowsFiles::Exists(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::vector<FoundFile> WindowsFiles::Find(const std::string& pattern) {
  SystemFiles files;
  return FindFiles(files, pattern);
}

bool WindowsFiles::CreateFolder(const std::string& path) {
  return CreateDirectoryA(path.c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS;
}

bool WindowsFiles::Delete(const std::string& path) {
  return DeleteFileA(path.c_str()) != FALSE;
}

bool WindowsFiles::Rename(const std::string& source, const std::string& target) {
  return MoveFileA(source.c_str(), target.c_str()) != FALSE;
}

bool WindowsFiles::Copy(const std::string& source, const std::string& target) {
  return CopyFileA(source.c_str(), target.c_str(), FALSE) != FALSE;
}

bool WindowsFiles::RewriteLinks(const std::string& kml, const std::string& baseUrl,
                                const std::string& subFolder) {
  return RewriteKmlLinks(kml, baseUrl, subFolder) == 1;
}

bool WindowsFiles::MakePreview(const std::string& orthophoto, const std::string& picture) {
  return MakePreviewImage(orthophoto, picture) == 1;
}

bool WindowsFiles::IsPreview(const std::string& path) {
  return IsPreviewImage(path);
}

std::optional<std::string> WindowsEnvironment::Get(const std::string& name) {
  std::string value(kMaxVariable, '\0');
  SetLastError(ERROR_SUCCESS);
  const DWORD length = GetEnvironmentVariableA(name.c_str(), value.data(), kMaxVariable);
  if (length == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
  value.resize(length < kMaxVariable ? length : 0);
  return value;
}

bool WindowsEnvironment::Set(const std::string& name, const std::string& value) {
  return SetEnvironmentVariableA(name.c_str(), value.c_str()) != FALSE;
}

std::string GetProgramPath() {
  char path[kMaxPath];
  const DWORD length = GetModuleFileNameA(nullptr, path, kMaxPath);
  return length < kMaxPath ? std::string(path, length) : std::string();
}
