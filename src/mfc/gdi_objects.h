// The framework's objects of the graphics device interface: fonts, bitmaps and brushes. Each owns its
// handle and deletes it in the end, so it must not be selected into a device context any more by then.
// User-interface thread. When the system has no resources left, Create... returns FALSE and the object
// stays empty; drawing with an empty object does nothing.
#ifndef MOSAICON_MFC_GDI_OBJECTS_H_
#define MOSAICON_MFC_GDI_OBJECTS_H_

#include <windows.h>

#include "mfc/dpi.h"

class CDC;

class CGdiObject {
 public:
  CGdiObject() = default;
  virtual ~CGdiObject() { DeleteObject(); }
  CGdiObject(const CGdiObject&) = delete;
  CGdiObject& operator=(const CGdiObject&) = delete;

  // Null when there is none.
  HGDIOBJ GetSafeHandle() const { return m_hObject; }
  // Takes the handle over. FALSE, and it stays the caller's, when it is null or this object has one.
  BOOL Attach(HGDIOBJ object);
  // Gives the handle away.
  HGDIOBJ Detach();
  // FALSE when there is none, or when it is still selected somewhere.
  BOOL DeleteObject();

  HGDIOBJ m_hObject = nullptr;
};

class CFont : public CGdiObject {
 public:
  operator HFONT() const { return static_cast<HFONT>(m_hObject); }
  // lfHeight is the size in tenths of a point; dpi are the dots per inch of the monitor.
  BOOL CreatePointFontIndirect(const LOGFONT* logFont, UINT dpi = afx::GetWindowDpi(nullptr));
};

class CBitmap : public CGdiObject {
 public:
  operator HBITMAP() const { return static_cast<HBITMAP>(m_hObject); }
  // In pixels, with the colours of dc: of a memory context, those of the bitmap that is selected there.
  BOOL CreateCompatibleBitmap(const CDC* dc, int width, int height);
};

class CBrush : public CGdiObject {
 public:
  explicit CBrush(COLORREF color);
  operator HBRUSH() const { return static_cast<HBRUSH>(m_hObject); }
};

#endif  // MOSAICON_MFC_GDI_OBJECTS_H_
