// The main dialog: choosing the orthophotos, by browsing, typing or dropping.
#include "job/dropped_files.h"
#include "job/input_list.h"
#include "job/input_summary.h"
#include "job/mosaicon_dlg.h"
#include "mfc/wait_cursor.h"
#include "resources/resource.h"

namespace {

// Of messages that were shown already, or that somebody else will show.
class NoMessages : public MessageSink {
 public:
  void ShowMessage(MessageIcon /*icon*/, const std::string& /*text*/) override {}
};

}  // namespace

// The form follows a list that was given neither by browsing nor by typing.
void CMosaiconDlg::ShowInputList(const std::string& inputList) {
  const CWaitCursor wait;
  RestoredInput input = RestoreInputList(inputList);
  m_strInputList = inputList;
  m_strScannedPath = input.shownPath;
  m_vOrthophotos = std::move(input.orthophotos);
  ShowInputPath(input.shownPath, input.folderMode);
  ShowSummary();
}

// Before a job, so that nobody has to start one to learn that the wrong file was chosen, or what it will
// take.
void CMosaiconDlg::ShowSummary() {
  const bool isChosen = !m_orthophoto.GetWindowText().empty();
  SetDlgItemText(IDC_INPUT_SUMMARY,
                 SummaryOf(isChosen ? m_vOrthophotos : std::vector<CTifData>(), ChosenTiles()));
}

void CMosaiconDlg::ShowInputPath(const std::string& path, bool folderMode) {
  CheckDlgButton(IDC_PICK_FOLDER, folderMode);
  SetFolderMode(folderMode);
  m_orthophoto.SetWindowText(path);
}

LRESULT CMosaiconDlg::OnOrthoPath(WPARAM /*wParam*/, LPARAM lParam) {
  if (lParam != 0) Scan(reinterpret_cast<const char*>(lParam), *this);
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
  ShowSummary();
}

void CMosaiconDlg::Scan(const std::string& path, MessageSink& messages) {
  m_strInputList.clear();
  m_strScannedPath = path;
  const CWaitCursor wait;
  ScanInput(path, IsDlgButtonChecked(IDC_PICK_FOLDER) != FALSE, m_files, messages, m_vOrthophotos);
  if (!m_bClosed) ShowSummary();
}

// Looks at what the field says, unless the list was made from that; false then.
bool CMosaiconDlg::ScanTypedPath() {
  const std::string typed = m_orthophoto.GetWindowText();
  const std::string path = m_files.FullPath(Unquote(typed));
  if (path != typed) m_orthophoto.SetWindowText(path);
  if (path == m_strScannedPath) return false;
  Scan(path, *this);
  return true;
}

// Files that could not be used may have arrived meanwhile. The job itself tells when they have not.
void CMosaiconDlg::ScanForJob() {
  if (ScanTypedPath() || !m_vOrthophotos.empty()) return;
  if (!m_strInputList.empty()) {
    m_vOrthophotos = RestoreInputList(m_strInputList).orthophotos;
  } else {
    NoMessages messages;
    Scan(m_strScannedPath, messages);
  }
}

void CMosaiconDlg::OnDropFiles(HDROP drop) {
  std::vector<std::string> paths = TakeDroppedFiles(drop);
  if (paths.empty()) return;
  SetForegroundWindow(m_hWnd);
  if (paths.size() > 1) paths = ListDroppedFiles(m_files, paths);
  if (paths.size() == 1) {
    ShowInputPath(paths.front(), m_files.IsFolder(paths.front()));
    Scan(paths.front(), *this);
    return;
  }
  ShowInputList(JoinInputList(paths));
  if (m_vOrthophotos.empty()) {
    ShowMessage(MessageIcon::kWarning, "No valid orthophoto found inside selected folder");
  }
}
