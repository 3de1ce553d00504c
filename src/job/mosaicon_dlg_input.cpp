// The main dialog: choosing the orthophotos, by browsing, typing or dropping.
#include "job/dropped_files.h"
#include "job/input_list.h"
#include "job/mosaicon_dlg.h"
#include "resources/resource.h"

namespace {

// Shows the hourglass for as long as it lives.
class WaitCursor {
 public:
  WaitCursor() : m_hPrevious(SetCursor(LoadCursorA(nullptr, IDC_WAIT))) {}
  ~WaitCursor() { SetCursor(m_hPrevious); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

 private:
  HCURSOR m_hPrevious;
};

}  // namespace

LRESULT CMosaiconDlg::OnOrthoPath(WPARAM /*wParam*/, LPARAM lParam) {
  if (lParam != 0) Scan(reinterpret_cast<const char*>(lParam));
  return 0;
}

// The scan may show a message, which must not happen while the focus is on its way.
void CMosaiconDlg::OnOrthophotoLeft() {
  PostMessageA(m_hWnd, kScanTypedPathMessage, 0, 0);
}

LRESULT CMosaiconDlg::OnScanTypedPath(WPARAM /*wParam*/, LPARAM /*lParam*/) {
  const HWND focus = GetFocus();
  // Somebody who changes to another program may come back with the rest of the path; who leaves for
  // these two buttons does not want it any more.
  const bool isLeftForGood = focus != nullptr && focus != m_orthophoto.GetSafeHwnd() &&
                             focus != GetDlgItem(IDC_PICK_FOLDER) && focus != GetDlgItem(IDC_EXIT);
  if (isLeftForGood) ScanTypedPath();
  return 0;
}

// Clears the field even when the mode stays what it was.
void CMosaiconDlg::OnPickFolder() {
  SetFolderMode(IsDlgButtonChecked(IDC_PICK_FOLDER) != FALSE);
  m_orthophoto.SetWindowText("");
  m_strScannedPath.clear();
}

void CMosaiconDlg::Scan(const std::string& path) {
  m_strScannedPath = path;
  const WaitCursor wait;
  ScanInput(path, IsDlgButtonChecked(IDC_PICK_FOLDER) != FALSE, m_files, *this, m_vOrthophotos);
}

void CMosaiconDlg::ScanTypedPath() {
  const std::string path = m_orthophoto.GetWindowText();
  if (path != m_strScannedPath) Scan(path);
}

void CMosaiconDlg::OnDropFiles(HDROP drop) {
  const std::vector<std::string> paths = TakeDroppedFiles(drop);
  if (m_bJobRunning || paths.empty()) return;
  SetForegroundWindow(m_hWnd);
  const bool isFolder = (GetFileAttributesA(paths.front().c_str()) & FILE_ATTRIBUTE_DIRECTORY) != 0;
  const bool folderMode = paths.size() > 1 || isFolder;
  CheckDlgButton(IDC_PICK_FOLDER, folderMode);
  SetFolderMode(folderMode);
  if (paths.size() == 1) {
    m_orthophoto.SetWindowText(paths.front());
    Scan(paths.front());
    return;
  }
  const WaitCursor wait;
  RestoredInput input = RestoreInputList(JoinInputList(paths));
  m_orthophoto.SetWindowText(input.shownPath);
  m_strScannedPath = input.shownPath;
  m_vOrthophotos = std::move(input.orthophotos);
  if (m_vOrthophotos.empty()) {
    ShowMessage(MessageIcon::kWarning, "No valid orthophoto found inside selected folder");
  }
}
