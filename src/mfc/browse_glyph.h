// The pictures on browse buttons. Drawn, not stored, so that they are sharp at every resolution and
// follow the system's colours. The middle of rect.
#ifndef MOSAICON_MFC_BROWSE_GLYPH_H_
#define MOSAICON_MFC_BROWSE_GLYPH_H_

#include <windows.h>

namespace mfc_detail {

void DrawFolderGlyph(HDC context, const RECT& rect, bool disabled, UINT dpi);
// Three dots.
void DrawDotsGlyph(HDC context, const RECT& rect, bool disabled, UINT dpi);

}  // namespace mfc_detail

#endif  // MOSAICON_MFC_BROWSE_GLYPH_H_
