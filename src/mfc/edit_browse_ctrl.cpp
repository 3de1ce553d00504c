#include "mfc/edit_browse_ctrl.h"

// After windows.h.
#include <windowsx.h>

#include <algorithm>

#include "files/system_files.h"
#include "mfc/browse_dialog.h"
#include "mfc/browse_glyph.h"
#include "mfc/control_drawing.h"

using namespace mfc_detail;

namespace {

constexpr int kButtonWidth = 24;  // at 96 dpi

// Of the program.
std::string& LastFolder() {
  static std::string folder;
  return folder;
}

// A path that does not depend on the current folder.
bool IsFull(const std::string& path) {
  if (path.size() < 3) return false;
  const bool drive = path[1] == ':' && (path[2] == '\\' || path[2] == '/');
  return drive || path.compare(0, 2, "\\\\") == 0;
}

// With the separator of a root, without that of other folders.
std::string FolderPart(const std::string& path) {
  const size_t separator = path.find_last_of("\\/");
  if (separator == std::string::npos) return "";
  const bool root = separator == 2 && path[1] == ':';
  return path.substr(0, separator + (root ? 1 : 0));
}

std::string FilePart(const std::string& path) {
  return path.substr(path.find_last_of("\\/") + 1);
}

// Where the dialog for a control with this text begins.
void BeginAt(const std::string& text, BrowseRequest* request) {
  request->strFolder = LastFolder();
  if (!IsFull(text)) return;
  if (SystemFiles().IsFolder(text)) {
    request->strFolder = text;
    return;
  }
  if (!SystemFiles().IsFolder(FolderPart(text))) return;
  request->strFolder = FolderPart(text);
  request->strFile = FilePart(text);
}

POINT PointOf(LPARAM lParam) {
  return POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
}

}  // namespace

BEGIN_MESSAGE_MAP(CMFCEditBrowseCtrl, CWnd)
ON_MESSAGE(WM_NCCALCSIZE, CMFCEditBrowseCtrl::OnNcCalcSize)
ON_MESSAGE(WM_NCPAINT, CMFCEditBrowseCtrl::OnNcPaint)
ON_MESSAGE(WM_NCHITTEST, CMFCEditBrowseCtrl::OnNcHitTest)
ON_MESSAGE(WM_NCMOUSEMOVE, CMFCEditBrowseCtrl::OnNcMouseMove)
ON_MESSAGE(WM_NCMOUSELEAVE, CMFCEditBrowseCtrl::OnNcMouseLeave)
ON_MESSAGE(WM_NCLBUTTONDOWN, CMFCEditBrowseCtrl::OnNcLButtonDown)
ON_MESSAGE(WM_NCLBUTTONDBLCLK, CMFCEditBrowseCtrl::OnNcLButtonDown)
ON_MESSAGE(WM_MOUSEMOVE, CMFCEditBrowseCtrl::OnMouseMove)
ON_MESSAGE(WM_LBUTTONUP, CMFCEditBrowseCtrl::OnLButtonUp)
ON_MESSAGE(WM_CAPTURECHANGED, CMFCEditBrowseCtrl::OnCaptureChanged)
ON_MESSAGE(WM_KEYDOWN, CMFCEditBrowseCtrl::OnKeyDown)
ON_MESSAGE(WM_SYSKEYDOWN, CMFCEditBrowseCtrl::OnSysKeyDown)
ON_MESSAGE(WM_ENABLE, CMFCEditBrowseCtrl::OnLookChanged)
ON_MESSAGE(WM_SYSCOLORCHANGE, CMFCEditBrowseCtrl::OnLookChanged)
ON_MESSAGE(WM_THEMECHANGED, CMFCEditBrowseCtrl::OnLayoutChanged)
ON_MESSAGE(kDpiChangedAfterParent, CMFCEditBrowseCtrl::OnLayoutChanged)
END_MESSAGE_MAP()

void CMFCEditBrowseCtrl::EnableFileBrowseButton(const std::string& defaultExtension,
                                                const std::string& filter) {
  m_strDefaultExtension = defaultExtension;
  m_strFilter = filter;
  SetMode(BrowseMode_File);
}

void CMFCEditBrowseCtrl::EnableFolderBrowseButton() {
  SetMode(BrowseMode_Folder);
}

void CMFCEditBrowseCtrl::SetInitialFolder(const std::string& folder) {
  LastFolder() = folder;
}

const std::string& CMFCEditBrowseCtrl::GetLastFolder() {
  return LastFolder();
}

void CMFCEditBrowseCtrl::PreSubclassWindow() {
  UpdateLayout();
}

void CMFCEditBrowseCtrl::SetMode(BrowseMode mode) {
  m_Mode = mode;
  UpdateLayout();
}

// Makes the system ask for the size of the client area again.
void CMFCEditBrowseCtrl::UpdateLayout() {
  if (m_hWnd == nullptr) return;
  SetWindowPos(m_hWnd, nullptr, 0, 0, 0, 0,
               SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  RedrawWindow(m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_ERASE);
}

LRESULT CMFCEditBrowseCtrl::OnNcCalcSize(WPARAM, LPARAM lParam) {
  // Both forms of the message begin with this rectangle.
  RECT& rect = *reinterpret_cast<RECT*>(lParam);
  const POINT corner = {rect.left, rect.top};
  const LRESULT result = Default();
  SetRectEmpty(&m_rectButton);
  if (m_Mode == BrowseMode_None) return result;
  m_rectButton = rect;
  rect.right = std::max(rect.left, rect.right - Scale(kButtonWidth, GetWindowDpi(m_hWnd)));
  m_rectButton.left = rect.right;
  OffsetRect(&m_rectButton, -corner.x, -corner.y);
  return result;
}

LRESULT CMFCEditBrowseCtrl::OnNcPaint(WPARAM, LPARAM) {
  const LRESULT result = Default();
  DrawButton();
  return result;
}

void CMFCEditBrowseCtrl::DrawButton() {
  if (IsRectEmpty(&m_rectButton)) return;
  ButtonLook look;
  look.bDisabled = !IsWindowEnabled(m_hWnd);
  look.bPressed = m_bPressed;
  look.bHot = m_bHot;
  const WindowContext context(m_hWnd, WindowContext::Area::kWithFrame);
  const RECT content = DrawButtonFace(m_hWnd, context.Get(), m_rectButton, look);
  const UINT dpi = GetWindowDpi(m_hWnd);
  if (m_Mode == BrowseMode_Folder) {
    DrawFolderGlyph(context.Get(), content, look.bDisabled, dpi);
  } else {
    DrawDotsGlyph(context.Get(), content, look.bDisabled, dpi);
  }
}

bool CMFCEditBrowseCtrl::IsOnButton(POINT screen) const {
  RECT window = {};
  GetWindowRect(m_hWnd, &window);
  return PtInRect(&m_rectButton, POINT{screen.x - window.left, screen.y - window.top}) != FALSE;
}

void CMFCEditBrowseCtrl::SetLook(bool hot, bool pressed) {
  if (m_bHot == hot && m_bPressed == pressed) return;
  m_bHot = hot;
  m_bPressed = pressed;
  DrawButton();
}

// Mouse messages for the button must not be taken for those of a caption or of a sizing border.
LRESULT CMFCEditBrowseCtrl::OnNcHitTest(WPARAM, LPARAM lParam) {
  return IsOnButton(PointOf(lParam)) ? HTBORDER : Default();
}

LRESULT CMFCEditBrowseCtrl::OnNcMouseMove(WPARAM, LPARAM lParam) {
  const bool hot = IsOnButton(PointOf(lParam));
  if (hot && !m_bHot) {
    TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE | TME_NONCLIENT, m_hWnd, 0};
    TrackMouseEvent(&track);
  }
  SetLook(hot, m_bPressed);
  return Default();
}

LRESULT CMFCEditBrowseCtrl::OnNcMouseLeave(WPARAM, LPARAM) {
  SetLook(false, m_bPressed);
  return Default();
}

LRESULT CMFCEditBrowseCtrl::OnNcLButtonDown(WPARAM, LPARAM lParam) {
  if (!IsOnButton(PointOf(lParam))) return Default();
  SetFocus(m_hWnd);
  SetCapture(m_hWnd);
  m_bCaptured = true;
  SetLook(true, true);
  return 0;
}

LRESULT CMFCEditBrowseCtrl::OnMouseMove(WPARAM, LPARAM lParam) {
  if (!m_bCaptured) return Default();
  POINT point = PointOf(lParam);
  ClientToScreen(m_hWnd, &point);
  SetLook(true, IsOnButton(point));
  return 0;
}

LRESULT CMFCEditBrowseCtrl::OnLButtonUp(WPARAM, LPARAM lParam) {
  if (!m_bCaptured) return Default();
  POINT point = PointOf(lParam);
  ClientToScreen(m_hWnd, &point);
  const bool clicked = IsOnButton(point);
  ReleaseCapture();
  if (clicked) Browse();
  return 0;
}

LRESULT CMFCEditBrowseCtrl::OnCaptureChanged(WPARAM, LPARAM) {
  if (m_bCaptured) SetLook(false, false);
  m_bCaptured = false;
  return Default();
}

LRESULT CMFCEditBrowseCtrl::OnKeyDown(WPARAM wParam, LPARAM) {
  if (wParam != VK_F4 || m_Mode == BrowseMode_None) return Default();
  Browse();
  return 0;
}

LRESULT CMFCEditBrowseCtrl::OnSysKeyDown(WPARAM wParam, LPARAM) {
  if (wParam != VK_DOWN || m_Mode == BrowseMode_None) return Default();
  Browse();
  return 0;
}

LRESULT CMFCEditBrowseCtrl::OnLookChanged(WPARAM, LPARAM) {
  const LRESULT result = Default();
  if (m_bCaptured) ReleaseCapture();
  DrawButton();
  return result;
}

LRESULT CMFCEditBrowseCtrl::OnLayoutChanged(WPARAM, LPARAM) {
  const LRESULT result = Default();
  UpdateLayout();
  return result;
}

// A held key, or a click that reaches the disabled dialog from elsewhere, must not open a second one.
void CMFCEditBrowseCtrl::Browse() {
  if (m_bBrowsing || !IsWindowEnabled(m_hWnd)) return;
  m_bBrowsing = true;
  OnBrowse();
  m_bBrowsing = false;
}

void CMFCEditBrowseCtrl::OnBrowse() {
  if (m_Mode == BrowseMode_None) return;
  BrowseRequest request;
  request.hOwner = GetAncestor(m_hWnd, GA_ROOT);
  request.bFolder = m_Mode == BrowseMode_Folder;
  request.strDefaultExtension = m_strDefaultExtension;
  request.strFilter = m_strFilter;
  BeginAt(GetWindowText(), &request);
  std::string path;
  m_bPathChosen = false;
  const BrowseOutcome outcome = RunBrowseDialog(request, &path);
  if (m_hWnd == nullptr || !IsWindowEnabled(m_hWnd)) return;
  switch (outcome) {
    case BrowseOutcome::kChosen:
      TakePath(path);
      break;
    case BrowseOutcome::kNotInCodePage:
      MessageBox(
          "The path that you have chosen has characters that this program cannot use. "
          "Please rename the file or its folders, or choose another.",
          MB_OK | MB_ICONEXCLAMATION);
      break;
    case BrowseOutcome::kFailed:
      MessageBox("Windows could not show the dialog to choose a file or a folder. Please type the path.",
                 MB_OK | MB_ICONEXCLAMATION);
      break;
    case BrowseOutcome::kCancelled:
      break;
  }
}

void CMFCEditBrowseCtrl::TakePath(const std::string& path) {
  m_bPathChosen = true;
  LastFolder() = m_Mode == BrowseMode_Folder ? path : FolderPart(path);
  if (path == GetWindowText()) return;
  SetWindowText(path);
  SendMessage(EM_SETMODIFY, TRUE);
  OnAfterUpdate();
}
