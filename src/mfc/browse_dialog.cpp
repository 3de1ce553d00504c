#include "mfc/browse_dialog.h"

// After windows.h.
#include <objbase.h>
#include <shobjidl.h>

#include <vector>

#include "files/wide_text.h"
#include "mfc/com_pointer.h"

namespace {

using afx::ComPointer;

// "A|*.a|B|*.b||" as the pairs of names and patterns that the shell takes. Points into parts.
std::vector<COMDLG_FILTERSPEC> FilterPairs(const std::vector<std::wstring>& parts) {
  std::vector<COMDLG_FILTERSPEC> pairs;
  for (size_t i = 0; i + 1 < parts.size() && !parts[i].empty(); i += 2) {
    pairs.push_back({parts[i].c_str(), parts[i + 1].c_str()});
  }
  return pairs;
}

std::vector<std::wstring> Split(const std::wstring& filter) {
  std::vector<std::wstring> parts;
  size_t start = 0;
  for (size_t bar = filter.find(L'|'); bar != std::wstring::npos; bar = filter.find(L'|', start)) {
    parts.push_back(filter.substr(start, bar - start));
    start = bar + 1;
  }
  if (start < filter.size()) parts.push_back(filter.substr(start));
  return parts;
}

HRESULT SetOptions(IFileOpenDialog& dialog, bool folder) {
  FILEOPENDIALOGOPTIONS options = 0;
  const HRESULT result = dialog.GetOptions(&options);
  if (FAILED(result)) return result;
  // The current folder belongs to the program.
  options |= FOS_FORCEFILESYSTEM | FOS_PATHMUSTEXIST | FOS_NOCHANGEDIR;
  options |= folder ? FOS_PICKFOLDERS : FOS_FILEMUSTEXIST;
  return dialog.SetOptions(options);
}

// The dialog works without any of these, so that failures do not matter.
void Prepare(IFileOpenDialog& dialog, const BrowseRequest& request) {
  IShellItem* folder = nullptr;
  if (!request.strFolder.empty() &&
      SUCCEEDED(SHCreateItemFromParsingName(WideFromAnsi(request.strFolder).c_str(), nullptr, IID_IShellItem,
                                            reinterpret_cast<void**>(&folder)))) {
    const ComPointer<IShellItem> owned(folder);
    dialog.SetFolder(folder);
  }
  if (request.bFolder) return;
  const std::vector<std::wstring> parts = Split(WideFromAnsi(request.strFilter));
  const std::vector<COMDLG_FILTERSPEC> pairs = FilterPairs(parts);
  if (!pairs.empty()) dialog.SetFileTypes(static_cast<UINT>(pairs.size()), pairs.data());
  if (!request.strDefaultExtension.empty())
    dialog.SetDefaultExtension(WideFromAnsi(request.strDefaultExtension).c_str());
  if (!request.strFile.empty()) dialog.SetFileName(WideFromAnsi(request.strFile).c_str());
}

BrowseOutcome TakeResult(IFileOpenDialog& dialog, std::string* path) {
  IShellItem* item = nullptr;
  if (FAILED(dialog.GetResult(&item))) return BrowseOutcome::kFailed;
  const ComPointer<IShellItem> owned(item);
  wchar_t* name = nullptr;
  if (FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, &name))) return BrowseOutcome::kFailed;
  const std::wstring wide = name;
  CoTaskMemFree(name);
  // There and back: that holds for every code page.
  const std::string text = AnsiFromWide(wide);
  if (WideFromAnsi(text) != wide) return BrowseOutcome::kNotInCodePage;
  *path = text;
  return BrowseOutcome::kChosen;
}

}  // namespace

BrowseOutcome RunBrowseDialog(const BrowseRequest& request, std::string* path) {
  IFileOpenDialog* created = nullptr;
  if (FAILED(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, IID_IFileOpenDialog,
                              reinterpret_cast<void**>(&created))))
    return BrowseOutcome::kFailed;
  const ComPointer<IFileOpenDialog> dialog(created);
  if (FAILED(SetOptions(*dialog, request.bFolder))) return BrowseOutcome::kFailed;
  Prepare(*dialog, request);
  const HRESULT shown = dialog->Show(request.hOwner);
  if (shown == HRESULT_FROM_WIN32(ERROR_CANCELLED)) return BrowseOutcome::kCancelled;
  return SUCCEEDED(shown) ? TakeResult(*dialog, path) : BrowseOutcome::kFailed;
}
