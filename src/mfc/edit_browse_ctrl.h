// The framework's edit control with a browse button: an edit control of a dialog template, in whose frame
// a button chooses a file or a folder. F4 and Alt+Down do the same as the button.
//
// The dialog begins in the folder that the text names, or else where the last one of this program was.
//
// User-interface thread, with COM initialised (CShellManager). The object must live as long as the
// window, which may be disabled or destroyed while the dialog is open; its choice is dropped then. Texts
// and paths are in the ANSI code page; a path that it cannot express is refused with a message.
#ifndef MOSAICON_MFC_EDIT_BROWSE_CTRL_H_
#define MOSAICON_MFC_EDIT_BROWSE_CTRL_H_

#include "mfc/wnd.h"

class CMFCEditBrowseCtrl : public CWnd {
 public:
  // There is no button before one of these is called.
  // defaultExtension without the dot; filter as in "Text (*.txt)|*.txt|All (*.*)|*.*||".
  void EnableFileBrowseButton(const std::string& defaultExtension = "", const std::string& filter = "");
  void EnableFolderBrowseButton();

  // Where dialogs begin when the text names no folder; of all these controls. A program that keeps
  // GetLastFolder at its end and gives it back at its next start begins where it was.
  static void SetInitialFolder(const std::string& folder);
  static const std::string& GetLastFolder();

  // The button was pressed. Shows the dialog; the chosen path becomes the text.
  virtual void OnBrowse();
  // The text is now what was chosen, and was another before.
  virtual void OnAfterUpdate() {}

 protected:
  void PreSubclassWindow() override;
  // Whether the last dialog was left with a path that became the text.
  bool IsPathChosen() const { return m_bPathChosen; }
  DECLARE_MESSAGE_MAP()

 private:
  enum BrowseMode { BrowseMode_None, BrowseMode_File, BrowseMode_Folder };

  void SetMode(BrowseMode mode);
  LRESULT OnNcCalcSize(WPARAM wParam, LPARAM lParam);
  LRESULT OnNcPaint(WPARAM wParam, LPARAM lParam);
  LRESULT OnNcHitTest(WPARAM wParam, LPARAM lParam);
  LRESULT OnNcMouseMove(WPARAM wParam, LPARAM lParam);
  LRESULT OnNcMouseLeave(WPARAM wParam, LPARAM lParam);
  LRESULT OnNcLButtonDown(WPARAM wParam, LPARAM lParam);
  LRESULT OnMouseMove(WPARAM wParam, LPARAM lParam);
  LRESULT OnLButtonUp(WPARAM wParam, LPARAM lParam);
  LRESULT OnCaptureChanged(WPARAM wParam, LPARAM lParam);
  LRESULT OnKeyDown(WPARAM wParam, LPARAM lParam);
  LRESULT OnSysKeyDown(WPARAM wParam, LPARAM lParam);
  LRESULT OnLookChanged(WPARAM wParam, LPARAM lParam);
  LRESULT OnLayoutChanged(WPARAM wParam, LPARAM lParam);
  bool IsOnButton(POINT screen) const;
  void SetLook(bool hot, bool pressed);
  void DrawButton();
  void Browse();
  void TakePath(const std::string& path);
  void UpdateLayout();

  BrowseMode m_Mode = BrowseMode_None;
  std::string m_strDefaultExtension;
  std::string m_strFilter;
  RECT m_rectButton = {};  // relative to the window's corner
  bool m_bHot = false;
  bool m_bPressed = false;
  bool m_bCaptured = false;  // the mouse went down on the button
  bool m_bBrowsing = false;
  bool m_bPathChosen = false;
};

#endif  // MOSAICON_MFC_EDIT_BROWSE_CTRL_H_
