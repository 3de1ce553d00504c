// The main dialog: what reaches it in the middle of a job, behind another window and after its end. Handlers
// run wherever messages are pumped, so this is decided here, once, and not in each of them.
#include <algorithm>
#include <iterator>

#include "job/mosaicon_dlg.h"
#include "resources/resource.h"

namespace {

// Locked while a job runs. About and the tutorials are not: they do no harm then.
constexpr int kLockedControls[] = {
    IDC_ORTHOPHOTO,  IDC_TARGET_URL, IDC_GOOGLE_KEY,    IDC_GET_GOOGLE_KEY, IDC_TRANSPARENCY,
    IDC_RESAMPLING,  IDC_MAP_TITLE,  IDC_TARGET_FOLDER, IDC_PREVIEW,        IDC_UPLOAD,
    IDC_PICK_FOLDER, IDC_WEB_OUTPUT, IDC_START,         IDC_EXIT,           IDC_SHOW_FINISHED_MAP,
    IDC_TILES_EXACT, IDC_TILES_SMALL};

bool IsLockedControl(int id) {
  return std::find(std::begin(kLockedControls), std::end(kLockedControls), id) != std::end(kLockedControls);
}

// A click, or a key that stands for one.
bool IsClick(UINT message, WPARAM wParam) {
  return message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED;
}

}  // namespace

LRESULT CMosaiconDlg::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  if (m_bClosed) return WindowProcWhenClosed(message, wParam, lParam);
  if (!IsInTurn(message, wParam)) {
    if (message == WM_DROPFILES) DragFinish(reinterpret_cast<HDROP>(wParam));
    return 0;
  }
  return CDialogEx::WindowProc(message, wParam, lParam);
}

// A closed window handles nothing: it is painted and destroyed.
LRESULT CMosaiconDlg::WindowProcWhenClosed(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_DESTROY:
    case WM_DRAWITEM:
      return CDialogEx::WindowProc(message, wParam, lParam);
    case WM_CLOSE:
    case WM_COMMAND:
    case WM_SYSCOMMAND:
      return 0;
    default:
      return DefWindowProc(message, wParam, lParam);
  }
}

// What was posted before the controls were locked, or before a window opened in front of this one, arrives
// nevertheless.
bool CMosaiconDlg::IsInTurn(UINT message, WPARAM wParam) const {
  const bool isBehind = !IsWindowEnabled(m_hWnd);
  if (message == WM_DROPFILES || message == kScanTypedPathMessage) return !m_bJobRunning && !isBehind;
  if (m_bJobRunning && message == g_nOrthoPathMessage) return false;
  if (m_bJobRunning && message == WM_COMMAND && IsLockedControl(LOWORD(wParam))) return false;
  const bool isAboutEntry = message == WM_SYSCOMMAND && wParam == IDM_ABOUTBOX;
  return !isBehind || (!isAboutEntry && !IsClick(message, wParam));
}

void CMosaiconDlg::LockControls(bool locked) {
  for (const int id : kLockedControls) EnableWindow(GetDlgItem(id), !locked);
}
