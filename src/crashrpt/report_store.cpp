#include "crashrpt/report_store.h"

#include <shlobj.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <functional>
#include <utility>

#include "crashrpt/report_name.h"
#include "files/system_files.h"

namespace {

bool MakeFolders(const std::string& path) {
  const int result = SHCreateDirectoryExA(nullptr, path.c_str(), nullptr);
  return result == ERROR_SUCCESS || result == ERROR_ALREADY_EXISTS || result == ERROR_FILE_EXISTS;
}

std::string PathIn(const std::string& folder, const std::string& name) {
  return folder + "\\" + name;
}

// Names of the folders in a folder, sorted.
std::vector<std::string> FoldersIn(const std::string& folder) {
  std::vector<FoundFile> found;
  SystemFiles().Find(folder + "\\*", found);
  std::vector<std::string> names;
  for (const FoundFile& each : found) {
    if (each.isDirectory) names.push_back(each.name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

void DeleteReport(const std::string& folder) {
  for (const char* name : {kReportPicture, kReportDump, kReportXml}) {
    DeleteFileA(PathIn(folder, name).c_str());
  }
  RemoveDirectoryA(folder.c_str());
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
  std::vector<std::string> names = FoldersIn(m_strFolder + "\\pending");
  std::erase_if(names, [](const std::string& name) { return !IsReportName(name); });
  return names;
}

void ReportStore::KeepNewest(size_t count) const {
  std::vector<std::pair<std::string, std::string>> reports;  // name and path
  for (const std::string& place : {m_strFolder, m_strFolder + "\\pending", m_strFolder + "\\sent"}) {
    for (const std::string& folder : FoldersIn(place)) {
      const std::string name =
          folder.ends_with(kUnfinished) ? folder.substr(0, folder.size() - std::strlen(kUnfinished)) : folder;
      if (IsReportName(name)) reports.emplace_back(name, PathIn(place, folder));
    }
  }
  std::sort(reports.begin(), reports.end(), std::greater<>());
  for (size_t i = count; i < reports.size(); ++i) {
    const auto& [name, path] = reports[i];
    const bool isPending = path == PendingPath(name);
    const UniqueHandle lock = isPending ? LockDelivery(name) : nullptr;
    if (lock.get() != INVALID_HANDLE_VALUE) DeleteReport(path);
  }
}

UniqueHandle ReportStore::LockDelivery(const std::string& name) const {
  if (!MakeFolders(m_strFolder + "\\pending")) return UniqueHandle(INVALID_HANDLE_VALUE);
  // Beside the report: a folder with an open file in it cannot be renamed. Windows removes the file
  // when its owner ends, however that happens.
  return UniqueHandle(CreateFileA((PendingPath(name) + ".lock").c_str(),
                                  GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS,
                                  FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
}

bool ReplaceFileBytes(const std::string& path, const std::string& bytes) {
  const std::string newPath = path + ".new";
  std::ofstream file(newPath, std::ios::binary);
  file << bytes;
  file.close();
  if (file.good() && MoveFileExA(newPath.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
  DeleteFileA(newPath.c_str());
  return false;
}
