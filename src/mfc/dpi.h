// Sizes that grow with the resolution of the monitor a window is on.
#ifndef MOSAICON_MFC_DPI_H_
#define MOSAICON_MFC_DPI_H_

#include <windows.h>

namespace afx {

// WM_DPICHANGED_AFTERPARENT, which headers that are set to older systems lack.
inline constexpr UINT kDpiChangedAfterParent = 0x02E3;

// Dots per inch that the window is shown with; those of the screen for null, and where the system has
// one value for all windows.
UINT GetWindowDpi(HWND window);

// What is this many pixels at 96 dpi, rounded.
int Scale(int pixels, UINT dpi);

}  // namespace afx

#endif  // MOSAICON_MFC_DPI_H_
