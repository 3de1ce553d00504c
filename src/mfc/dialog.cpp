#include "mfc/dialog.h"

#include "kvtools/dialog_message.h"
#include "mfc/app.h"

namespace {

// Disables the owner of a modal dialog while it lives.
class DisabledOwner {
 public:
  explicit DisabledOwner(HWND owner) : m_hOwner(owner) {
    if (m_hOwner != nullptr) m_bWasDisabled = EnableWindow(m_hOwner, FALSE);
  }
  ~DisabledOwner() { Enable(); }
  DisabledOwner(const DisabledOwner&) = delete;
  DisabledOwner& operator=(const DisabledOwner&) = delete;

  void Enable() {
    if (m_hOwner != nullptr && !m_bWasDisabled && IsWindow(m_hOwner)) EnableWindow(m_hOwner, TRUE);
    m_hOwner = nullptr;
  }

 private:
  HWND m_hOwner;
  BOOL m_bWasDisabled = FALSE;
};

HWND OwnerFor(const CWnd* parent) {
  HWND owner = parent != nullptr ? parent->GetSafeHwnd() : nullptr;
  const CWinApp* app = AfxGetApp();
  if (owner == nullptr && app != nullptr && app->m_pMainWnd != nullptr)
    owner = app->m_pMainWnd->GetSafeHwnd();
  // A control cannot own a window; its dialog does.
  return owner != nullptr ? GetLastActivePopup(GetAncestor(owner, GA_ROOT)) : nullptr;
}

}  // namespace

BEGIN_MESSAGE_MAP(CDialog, CWnd)
ON_COMMAND(IDOK, CDialog::OnOK)
ON_COMMAND(IDCANCEL, CDialog::OnCancel)
END_MESSAGE_MAP()

CDialog::CDialog(UINT templateId, CWnd* parent) : m_nTemplateId(templateId), m_pParent(parent) {}

CDialog::~CDialog() {
  DestroyWindow();
}

INT_PTR CDialog::DoModal() {
  if (m_hWnd != nullptr) return -1;
  m_bJoined = false;
  m_bEndAsked = false;
  m_nResult = IDABORT;
  const HWND ownerWindow = OwnerFor(m_pParent);
  DisabledOwner owner(ownerWindow);
  const HWND window = CreateDialogParamA(AfxGetInstanceHandle(), MAKEINTRESOURCEA(m_nTemplateId), ownerWindow,
                                         DialogProcedure, reinterpret_cast<LPARAM>(this));
  // Null is also a window that OnInitDialog destroyed.
  if (window == nullptr && !m_bJoined) return -1;
  if (!m_bEndAsked && m_hWnd != nullptr) {
    ShowWindow(m_hWnd, SW_SHOW);
    RunModalLoop();
  }
  // First the owner, so that the focus goes back to it and not to another program.
  owner.Enable();
  DestroyWindow();
  return m_nResult;
}

void CDialog::RunModalLoop() {
  while (!m_bEndAsked && m_hWnd != nullptr) {
    MSG message;
    const BOOL got = GetMessageA(&message, nullptr, 0, 0);
    if (got == -1) return;
    if (got == 0) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    if (m_hWnd != nullptr && TranslateDialogMessage(m_hWnd, message)) continue;
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

void CDialog::EndDialog(int result) {
  m_nResult = result;
  m_bEndAsked = true;
  // The loop may sit in GetMessage, with nothing to come.
  if (m_hWnd != nullptr) PostMessageA(m_hWnd, WM_NULL, 0, 0);
}

void CDialog::PostNcDestroy() {
  // A message that another thread sent may have destroyed the window from within GetMessage.
  PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0);
}

BOOL CDialog::DestroyWindow() {
  return m_hWnd != nullptr && ::DestroyWindow(m_hWnd);
}

// Sees the messages until the window is joined to its object; from then on WindowProc does.
INT_PTR CALLBACK CDialog::DialogProcedure(HWND window, UINT message, WPARAM /*wParam*/,
                                          LPARAM lParam) noexcept {
  if (message != WM_INITDIALOG) return FALSE;
  auto* dialog = reinterpret_cast<CDialog*>(lParam);
  dialog->m_bJoined = dialog->SubclassWindow(window) != FALSE;
  if (!dialog->m_bJoined) return FALSE;
  return dialog->OnInitDialog();
}
