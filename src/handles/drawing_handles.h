// Owners of what Windows draws with: objects (bitmaps, fonts, brushes), device contexts, and what is selected
// in them. Each gives back at the end of its scope what it took. An object must outlive its selection, and a
// selection lives shorter than its context: in the opposite order of construction, as scopes do it.
//
// Win32; one thread. A context may be null when the system has none left; what is drawn there is lost.
#ifndef MOSAICON_HANDLES_DRAWING_HANDLES_H_
#define MOSAICON_HANDLES_DRAWING_HANDLES_H_

#include <windows.h>

#include <memory>
#include <type_traits>

struct GdiDeleter {
  void operator()(void* object) const { DeleteObject(object); }
};
// For HBITMAP, HFONT, HBRUSH and the like.
template <class Handle>
using GdiObject = std::unique_ptr<std::remove_pointer_t<Handle>, GdiDeleter>;

// An object in a device context.
class Selected {
 public:
  Selected(HDC context, HGDIOBJ object) : m_hContext(context), m_hBefore(SelectObject(context, object)) {}
  ~Selected() { SelectObject(m_hContext, m_hBefore); }
  Selected(const Selected&) = delete;
  Selected& operator=(const Selected&) = delete;

 private:
  const HDC m_hContext;
  const HGDIOBJ m_hBefore;
};

// The context of a whole window with its frame, of a client area, or (window null) of the screen.
class WindowContext {
 public:
  enum class Area { kClient, kWithFrame };
  explicit WindowContext(HWND window, Area area = Area::kClient)
      : m_hWindow(window), m_hContext(area == Area::kClient ? GetDC(window) : GetWindowDC(window)) {}
  ~WindowContext() { ReleaseDC(m_hWindow, m_hContext); }
  WindowContext(const WindowContext&) = delete;
  WindowContext& operator=(const WindowContext&) = delete;

  HDC Get() const { return m_hContext; }

 private:
  const HWND m_hWindow;
  const HDC m_hContext;
};

// A context in memory that draws as the one it is made like. It has one pixel until a bitmap is selected.
class MemoryContext {
 public:
  explicit MemoryContext(HDC like) : m_hContext(CreateCompatibleDC(like)) {}
  ~MemoryContext() { DeleteDC(m_hContext); }
  MemoryContext(const MemoryContext&) = delete;
  MemoryContext& operator=(const MemoryContext&) = delete;

  HDC Get() const { return m_hContext; }

 private:
  const HDC m_hContext;
};

#endif  // MOSAICON_HANDLES_DRAWING_HANDLES_H_
