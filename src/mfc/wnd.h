// The framework's CWnd: a C++ object for a window, with a message map. One thread, the window's,
// except that GetSafeHwnd may be read by others while the window lives.
//
// Attach and Detach only join the two; SubclassWindow also sends the window's messages to WindowProc.
// No exception leaves WindowProc: one that does ends the process, as any other crash.
//
// Methods that are called like functions of the system carry the same suffix as these once windows.h
// is read, which this header sees to; their own code says "::" to mean the system's.
#ifndef MOSAICON_MFC_WND_H_
#define MOSAICON_MFC_WND_H_

#include <windows.h>

#include <string>

#include "mfc/message_map.h"

class CWnd {
 public:
  CWnd() = default;
  // Stops receiving messages; the window itself is left.
  virtual ~CWnd();
  CWnd(const CWnd&) = delete;
  CWnd& operator=(const CWnd&) = delete;

  // Null when there is no window.
  HWND GetSafeHwnd() const { return m_hWnd; }
  BOOL Attach(HWND window);
  HWND Detach();

  // Receives the messages of window until it is destroyed. FALSE when there is no such window, or
  // when another object receives its messages.
  BOOL SubclassWindow(HWND window);
  BOOL SubclassDlgItem(UINT id, CWnd* parent);
  // The object that receives the messages of window; null when there is none.
  static CWnd* FromHandlePermanent(HWND window);

  // The window with this id directly below this one; null when there is none.
  HWND GetDlgItem(int id) const { return ::GetDlgItem(m_hWnd, id); }
  // Text in the ANSI code page, whatever its length.
  std::string GetWindowText() const;
  void SetWindowText(const std::string& text);
  std::string GetDlgItemText(int id) const;
  void SetDlgItemText(int id, const std::string& text);
  BOOL IsDlgButtonChecked(int id) const { return ::IsDlgButtonChecked(m_hWnd, id) == BST_CHECKED; }
  void CheckDlgButton(int id, bool checked);

  LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
  // Shows text with the caption of the program. Returns the button's id; 0 when the box ended
  // without an answer, because its window or the whole program is ending.
  int MessageBox(const std::string& text, UINT type) const;

  HWND m_hWnd = nullptr;

 protected:
  static const AFX_MSGMAP* GetThisMessageMap();
  virtual const AFX_MSGMAP* GetMessageMap() const;
  // Looks the message up in the map; otherwise DefWindowProc.
  virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
  // What the window would do without this object.
  LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
  // The same with the message that is being handled.
  LRESULT Default();
  // SubclassWindow has joined the two; messages arrive from here on.
  virtual void PreSubclassWindow() {}
  // An owner-drawn control is asked to draw itself.
  virtual void DrawItem(const DRAWITEMSTRUCT& /*item*/) {}
  // The window is gone; the object is not attached any more.
  virtual void PostNcDestroy() {}

 private:
  static LRESULT CALLBACK SubclassProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                            UINT_PTR id, DWORD_PTR object) noexcept;
  void StopSubclassing();
  const AFX_MSGMAP_ENTRY* FindHandler(UINT message, WPARAM wParam) const;

  MSG m_current = {};  // the message being handled
};

#endif  // MOSAICON_MFC_WND_H_
