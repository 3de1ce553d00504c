#include "progress/progress_mem_dc.h"

CTProgressTimeToCompleteMemDC::CTProgressTimeToCompleteMemDC(CDC* target)
    : m_pDC(target), m_bMemDC(!target->IsPrinting()) {
  m_pDC->GetClipBox(&m_rect);
  if (m_bMemDC) {
    CreateBitmap();
  } else {
    m_bPrinting = m_pDC->m_bPrinting;
    m_hDC = m_pDC->m_hDC;
    m_hAttribDC = m_pDC->m_hAttribDC;
  }
  FillSolidRect(&m_rect, m_pDC->GetBkColor());
}

CTProgressTimeToCompleteMemDC::~CTProgressTimeToCompleteMemDC() {
  if (m_bMemDC) {
    // Without a bitmap there is nothing to show but the one pixel of a new device context.
    if (m_bitmap.GetSafeHandle() == nullptr) return;
    m_pDC->BitBlt(m_rect.left, m_rect.top, m_rect.right - m_rect.left, m_rect.bottom - m_rect.top, this,
                  m_rect.left, m_rect.top, SRCCOPY);
    SelectObject(m_hOldBitmap);
  } else {
    Detach();
  }
}

void CTProgressTimeToCompleteMemDC::CreateBitmap() {
  CreateCompatibleDC(m_pDC);
  // A bitmap is measured in pixels, whatever the target's units are.
  m_pDC->LPtoDP(&m_rect);
  m_bitmap.CreateCompatibleBitmap(m_pDC, m_rect.right - m_rect.left, m_rect.bottom - m_rect.top);
  m_hOldBitmap = SelectObject(m_bitmap);
  SetMapMode(m_pDC->GetMapMode());
  m_pDC->DPtoLP(&m_rect);
  // The same coordinates mean the same place in both.
  SetWindowOrg(m_rect.left, m_rect.top);
}

BOOL CTProgressTimeToCompleteMemDC::PtVisible(int x, int y) const {
  return ::PtVisible(m_hDC, x, y);
}

BOOL CTProgressTimeToCompleteMemDC::RectVisible(LPCRECT rect) const {
  return ::RectVisible(m_hDC, rect);
}

BOOL CTProgressTimeToCompleteMemDC::TextOut(int x, int y, LPCSTR text, int count) {
  return ::TextOut(m_hDC, x, y, text, count);
}

BOOL CTProgressTimeToCompleteMemDC::ExtTextOut(int x, int y, UINT options, LPCRECT rect, LPCSTR text,
                                               UINT count, LPINT widths) {
  return ::ExtTextOut(m_hDC, x, y, options, rect, text, count, widths);
}

SIZE CTProgressTimeToCompleteMemDC::TabbedTextOut(int x, int y, LPCSTR text, int count, int tabs,
                                                  LPINT tabStops, int tabOrigin) {
  const LONG size = ::TabbedTextOut(m_hDC, x, y, text, count, tabs, tabStops, tabOrigin);
  return {LOWORD(size), HIWORD(size)};
}

int CTProgressTimeToCompleteMemDC::DrawText(LPCSTR text, int count, LPRECT rect, UINT format) {
  return ::DrawText(m_hDC, text, count, rect, format);
}

int CTProgressTimeToCompleteMemDC::DrawTextEx(LPSTR text, int count, LPRECT rect, UINT format,
                                              LPDRAWTEXTPARAMS parameters) {
  return ::DrawTextEx(m_hDC, text, count, rect, format, parameters);
}

BOOL CTProgressTimeToCompleteMemDC::GrayString(HBRUSH brush, GRAYSTRINGPROC output, LPARAM data, int count,
                                               int x, int y, int width, int height) {
  return ::GrayString(m_hDC, brush, output, data, count, x, y, width, height);
}

int CTProgressTimeToCompleteMemDC::Escape(int escape, int count, LPCSTR inData, LPVOID outData) {
  return ::Escape(m_hDC, escape, count, inData, outData);
}
