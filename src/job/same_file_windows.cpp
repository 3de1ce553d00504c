#include "job/same_file.h"

#include <windows.h>

namespace {

bool GetIdentity(const std::string& path, BY_HANDLE_FILE_INFORMATION& identity) {
  const HANDLE file = CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool known = GetFileInformationByHandle(file, &identity) != FALSE;
  CloseHandle(file);
  return known;
}

}  // namespace

bool IsSameFile(const std::string& left, const std::string& right) {
  BY_HANDLE_FILE_INFORMATION one = {};
  BY_HANDLE_FILE_INFORMATION other = {};
  // Size and time as well: some file systems have no numbers and call all of them 0.
  return GetIdentity(left, one) && GetIdentity(right, other) &&
         one.dwVolumeSerialNumber == other.dwVolumeSerialNumber &&
         one.nFileIndexHigh == other.nFileIndexHigh && one.nFileIndexLow == other.nFileIndexLow &&
         one.nFileSizeHigh == other.nFileSizeHigh && one.nFileSizeLow == other.nFileSizeLow &&
         CompareFileTime(&one.ftLastWriteTime, &other.ftLastWriteTime) == 0;
}
