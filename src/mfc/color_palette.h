// The palette of a colour button: a menu of named colours, and the system's dialog to mix others. The
// colours that the user keeps in that dialog live as long as the process.
//
// User-interface thread. Returns when the user has chosen or has closed it; messages are dispatched
// meanwhile, so that the owner may be gone afterwards.
#ifndef MOSAICON_MFC_COLOR_PALETTE_H_
#define MOSAICON_MFC_COLOR_PALETTE_H_

#include <windows.h>

#include <string>

// Drops the palette below (or above) owner. Without otherLabel, only the named colours can be chosen.
// Returns FALSE, and leaves color, when none was chosen.
BOOL ChooseFromPalette(HWND owner, const std::string& otherLabel, COLORREF* color);

// "Red (255, 0, 0)"; without the name where the palette has none.
std::string DescribeColor(COLORREF color);

#endif  // MOSAICON_MFC_COLOR_PALETTE_H_
