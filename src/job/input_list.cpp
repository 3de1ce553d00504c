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

int ScanInput(const std::string& path, bool folderMode, JobFiles& files, MessageSink& messages,
              std::vector<CTifData>& list, SkippedFileObserver* skipped) {
  if (path.empty()) return 0;
  list.clear();
  if (!folderMode) {
    if (!Append(path, list)) {
      messages.ShowMessage(MessageIcon::kWarning, "Unable to get geographic information into selected file");
    }
    return 0;
  }
  const bool separated = path.back() == '\\' || path.back() == '/';
  for (const FoundFile& file : files.Find(path + (separated ? "*.tif" : "\\*.tif"))) {
    if (file.name == "." || file.name == ".." || file.isDirectory) continue;
    if (!Append(file.path, list) && skipped != nullptr) skipped->OnSkipped(file.path);
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

std::string MakeInputListFull(const std::string& inputList, JobFiles& files) {
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
