// The framework's modal dialogs. The template is in the program's resources; the window lives as long
// as DoModal, which runs a message loop of its own. User-interface thread.
#ifndef MOSAICON_MFC_DIALOG_H_
#define MOSAICON_MFC_DIALOG_H_

#include "mfc/wnd.h"

class CDialog : public CWnd {
 public:
  // parent null: the program's main window, or the popup in front of it.
  explicit CDialog(UINT templateId, CWnd* parent = nullptr);
  // Destroys the window if it still exists.
  ~CDialog() override;

  // Returns what EndDialog was given; -1 when the window could not be made, or exists already; IDABORT
  // when it was destroyed without EndDialog, or when the program is ending (WM_QUIT, which is left for
  // the outer loop).
  virtual INT_PTR DoModal();
  // Ends DoModal; the window goes with it.
  void EndDialog(int result);
  BOOL DestroyWindow();

 protected:
  // The window and its controls exist, not shown yet. FALSE: the focus was set here.
  virtual BOOL OnInitDialog() { return TRUE; }
  virtual void OnOK() { EndDialog(IDOK); }
  virtual void OnCancel() { EndDialog(IDCANCEL); }
  void PostNcDestroy() override;
  DECLARE_MESSAGE_MAP()

 private:
  static INT_PTR CALLBACK DialogProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
  void RunModalLoop();

  const UINT m_nTemplateId;
  CWnd* const m_pParent;
  bool m_bJoined = false;  // with the window, at any time of this DoModal
  bool m_bEndAsked = false;
  INT_PTR m_nResult = IDABORT;
};

// The same here; the framework's extended dialogs differ in what they can be painted with.
class CDialogEx : public CDialog {
 public:
  using CDialog::CDialog;
};

#endif  // MOSAICON_MFC_DIALOG_H_
