// The framework's device contexts. User-interface thread. A CDC owns its handle and deletes it in the
// end. Coordinates are logical units.
//
// A CDC has two handles, which are nearly always the same: drawing goes to m_hDC, questions are answered
// by m_hAttribDC, and what is set (colours, modes, clipping, selected objects) is set for both. A context
// without handles does nothing and answers with failure.
//
// Objects are selected by handle. SelectObject does not keep them: they must outlive their selection.
#ifndef MOSAICON_MFC_DC_H_
#define MOSAICON_MFC_DC_H_

#include <windows.h>

#include <string>

#include "mfc/wnd.h"

class CDC {
 public:
  CDC() = default;
  virtual ~CDC();
  CDC(const CDC&) = delete;
  CDC& operator=(const CDC&) = delete;

  // Takes the handle over, for both. FALSE, and it stays the caller's, when it is null or there is one.
  BOOL Attach(HDC dc);
  // Gives the handle away.
  HDC Detach();
  // A memory context like dc, or like the screen for null.
  BOOL CreateCompatibleDC(const CDC* dc);
  BOOL DeleteDC();
  BOOL IsPrinting() const { return m_bPrinting; }

  // Returns what was selected before; null when object cannot be selected.
  HGDIOBJ SelectObject(HGDIOBJ object);
  // For RestoreDC; 0 when it failed. Of two different handles only the last state can be restored.
  int SaveDC();
  BOOL RestoreDC(int savedDC);

  COLORREF GetBkColor() const { return ::GetBkColor(m_hAttribDC); }
  // The setters return what was set before.
  COLORREF SetTextColor(COLORREF color);
  int SetBkMode(int mode);

  int GetMapMode() const { return ::GetMapMode(m_hAttribDC); }
  int SetMapMode(int mode);
  POINT SetWindowOrg(int x, int y);
  void LPtoDP(LPRECT rect) const;
  void DPtoLP(LPRECT rect) const;

  // The clipping functions return the kind of the region that is left.
  int GetClipBox(LPRECT rect) const { return ::GetClipBox(m_hDC, rect); }
  int IntersectClipRect(LPCRECT rect);
  int ExcludeClipRect(LPCRECT rect);
  virtual BOOL PtVisible(int x, int y) const;
  virtual BOOL RectVisible(LPCRECT rect) const;

  void FillRect(LPCRECT rect, HBRUSH brush);
  // The background colour is left as it was.
  void FillSolidRect(LPCRECT rect, COLORREF color);
  BOOL BitBlt(int x, int y, int width, int height, const CDC* source, int sourceX, int sourceY, DWORD code);

  // Of one line in the selected font, before any rotation.
  SIZE GetTextExtent(const std::string& text) const;
  virtual BOOL TextOut(int x, int y, LPCSTR text, int count);
  virtual BOOL ExtTextOut(int x, int y, UINT options, LPCRECT rect, LPCSTR text, UINT count, LPINT widths);
  virtual SIZE TabbedTextOut(int x, int y, LPCSTR text, int count, int tabs, LPINT tabStops, int tabOrigin);
  virtual int DrawText(LPCSTR text, int count, LPRECT rect, UINT format);
  virtual int DrawTextEx(LPSTR text, int count, LPRECT rect, UINT format, LPDRAWTEXTPARAMS parameters);
  virtual BOOL GrayString(HBRUSH brush, GRAYSTRINGPROC output, LPARAM data, int count, int x, int y,
                          int width, int height);
  // Speaks to the printer's driver.
  virtual int Escape(int escape, int count, LPCSTR inData, LPVOID outData);

  HDC m_hDC = nullptr;        // output
  HDC m_hAttribDC = nullptr;  // questions
  BOOL m_bPrinting = FALSE;   // whoever prints sets it
};

// Paints a window in its handler of WM_PAINT, clipped to what is invalid.
class CPaintDC : public CDC {
 public:
  explicit CPaintDC(const CWnd* window);
  ~CPaintDC() override;

 private:
  HWND m_hWnd;
  PAINTSTRUCT m_ps = {};
};

#endif  // MOSAICON_MFC_DC_H_
