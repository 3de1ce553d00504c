#include "crashrpt/report_store.h"

#include <shlobj.h>

#include <algorithm>

#include "crashrpt/report_name.h"

namespace {

bool MakeFolders(const std::string& path) {
  const int result = SHCreateDirectoryExA(nullptr, path.c_str(), nullptr);
  return result == ERROR_SUCCESS || result == ERROR_ALREADY_EXISTS || result == ERROR_FILE_EXISTS;
}

}  // namespace

std::string ReportStore::UnfinishedPath(const std::string& name) const {
  return Path(name) + kUnfinished;
}

bool ReportStore::Begin(const std::string& name) const {
  return MakeFolders(m_strFolder) && CreateDirectoryA(UnfinishedPath(name).c_str(), nullptr);
}

bool ReportStore::Complete(const std::string& name) const {
  return MoveFileA(UnfinishedPath(name).c_str(), Path(name).c_str()) != FALSE;
}

bool ReportStore::MarkAgreed(const std::string& name) const {
  return MakeFolders(m_strFolder + "\\pending") &&
         MoveFileA(Path(name).c_str(), PendingPath(name).c_str()) != FALSE;
}

bool ReportStore::MarkSent(const std::string& name) const {
  return MakeFolders(m_strFolder + "\\sent") &&
         MoveFileA(PendingPath(name).c_str(), SentPath(name).c_str()) != FALSE;
}

std::vector<std::string> ReportStore::Pending() const {
  std::vector<std::string> names;
  WIN32_FIND_DATAA data;
  const HANDLE search = FindFirstFileA(PendingPath("*").c_str(), &data);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    const bool folder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (folder && IsReportName(data.cFileName)) names.push_back(data.cFileName);
  } while (FindNextFileA(search, &data));
  FindClose(search);
  std::sort(names.begin(), names.end());
  return names;
}

UniqueHandle ReportStore::LockDelivery(const std::string& name) const {
  if (!MakeFolders(m_strFolder + "\\pending")) return UniqueHandle(INVALID_HANDLE_VALUE);
  // Beside the report: a folder with an open file in it cannot be renamed. Windows removes the file
  // when its owner ends, however that happens.
  return UniqueHandle(CreateFileA((PendingPath(name) + ".lock").c_str(),
                                  GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS,
                                  FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
}

bool PathExists(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}
