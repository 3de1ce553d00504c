#include "job/input_list.h"

#include "job/georeference.h"
#include "kvtools/kvtools.h"
#include "kvtools/split_path.h"

namespace {

constexpr char kItemSeparator = '|';

bool Append(const std::string& path, std::vector<CTifData>& list) {
  CTifData data;
  if (!ReadTifData(path, data)) return false;
  list.push_back(std::move(data));
  return true;
}

}  // namespace

std::vector<std::string> FindOrthophotos(FileSystem& files, const std::string& folder) {
  const bool separated = folder.ends_with('\\') || folder.ends_with('/');
  std::vector<std::string> paths;
  for (const FoundFile& file : FindFiles(files, folder + (separated ? "*.tif" : "\\*.tif"))) {
    if (!file.isDirectory) paths.push_back(file.path);
  }
  return paths;
}

int ScanInput(const std::string& path, bool folderMode, FileSystem& files, MessageSink& messages,
              std::vector<CTifData>& list, SkippedFileObserver* skipped) {
  if (path.empty()) return 0;
  list.clear();
  if (!folderMode) {
    if (!Append(path, list)) {
      messages.ShowMessage(MessageIcon::kWarning, "Unable to get geographic information into selected file");
    }
    return 0;
  }
  for (const std::string& file : FindOrthophotos(files, path)) {
    if (!Append(file, list) && skipped != nullptr) skipped->OnSkipped(file);
  }
  if (list.empty()) {
    messages.ShowMessage(MessageIcon::kWarning, "No valid orthophoto found inside selected folder");
  }
  return 0;
}

std::string JoinInputList(const std::vector<std::string>& items) {
  std::string list;
  for (const std::string& item : items) list += (list.empty() ? "" : std::string(1, kItemSeparator)) + item;
  return list;
}

std::string MakeInputListFull(const std::string& inputList, FileSystem& files) {
  std::vector<std::string> items;
  KVT_ParseString(inputList, kItemSeparator, items);
  for (std::string& item : items) item = files.FullPath(item);
  return JoinInputList(items);
}

RestoredInput RestoreInputList(const std::string& inputList) {
  RestoredInput restored;
  std::vector<std::string> items;
  KVT_ParseString(inputList, kItemSeparator, items);
  restored.folderMode = items.size() > 1;
  restored.shownPath = inputList;
  if (restored.folderMode) {
    const PathParts first = SplitPath(items[0]);
    restored.shownPath = first.drive + first.directory;
  }
  for (const std::string& item : items) Append(item, restored.orthophotos);
  return restored;
}
