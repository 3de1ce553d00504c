// The framework's colour button: an owner-drawn push button of a dialog template that shows a colour and
// drops down a palette, a menu, to choose another. A click, Space, Enter, F4 and Alt+Down drop it.
//
// The parent receives BN_CLICKED after the user has chosen another colour; SetColor tells nobody.
//
// The window text, which is not drawn, tells the colour to programs that read the screen out. It begins
// with the text that the template gives, or with that of the label before the control.
//
// User-interface thread. The object must live as long as the window.
#ifndef MOSAICON_MFC_COLOR_BUTTON_H_
#define MOSAICON_MFC_COLOR_BUTTON_H_

#include "mfc/wnd.h"

class CMFCColorButton : public CWnd {
 public:
  void SetColor(COLORREF color);
  COLORREF GetColor() const { return m_Color; }
  // Lets the user mix a colour: the last entry of the palette, with this label.
  void EnableOtherButton(const std::string& label) { m_strOtherLabel = label; }

 protected:
  void PreSubclassWindow() override;
  void DrawItem(const DRAWITEMSTRUCT& item) override;
  DECLARE_MESSAGE_MAP()

 private:
  LRESULT OnLButtonDown(WPARAM wParam, LPARAM lParam);
  LRESULT OnGetDlgCode(WPARAM wParam, LPARAM lParam);
  LRESULT OnKeyDown(WPARAM wParam, LPARAM lParam);
  LRESULT OnKeyUp(WPARAM wParam, LPARAM lParam);
  LRESULT OnSysKeyDown(WPARAM wParam, LPARAM lParam);
  void DropPalette();
  void TellName();

  COLORREF m_Color = RGB(0, 0, 0);
  std::string m_strOtherLabel;
  std::string m_strLabel;
  bool m_bDropped = false;
};

#endif  // MOSAICON_MFC_COLOR_BUTTON_H_
