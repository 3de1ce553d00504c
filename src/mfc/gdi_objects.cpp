#include "mfc/gdi_objects.h"

#include <cstdlib>
#include <utility>

#include "mfc/dc.h"

namespace {

constexpr int kTenthsOfAPointPerInch = 720;

}  // namespace

BOOL CGdiObject::Attach(HGDIOBJ object) {
  if (object == nullptr || m_hObject != nullptr) return FALSE;
  m_hObject = object;
  return TRUE;
}

HGDIOBJ CGdiObject::Detach() {
  return std::exchange(m_hObject, nullptr);
}

BOOL CGdiObject::DeleteObject() {
  return m_hObject != nullptr && ::DeleteObject(Detach());
}

BOOL CFont::CreatePointFontIndirect(const LOGFONT* logFont, UINT dpi) {
  LOGFONT inPixels = *logFont;
  // Negative: the height of the characters, as point sizes are, and not of the line.
  inPixels.lfHeight = -std::abs(MulDiv(logFont->lfHeight, static_cast<int>(dpi), kTenthsOfAPointPerInch));
  return Attach(CreateFontIndirect(&inPixels));
}

BOOL CBitmap::CreateCompatibleBitmap(const CDC* dc, int width, int height) {
  return Attach(::CreateCompatibleBitmap(dc->m_hDC, width, height));
}

CBrush::CBrush(COLORREF color) {
  Attach(CreateSolidBrush(color));
}
