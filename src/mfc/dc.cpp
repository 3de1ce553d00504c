#include "mfc/dc.h"

#include <utility>

namespace {

// What SaveDC answers for two handles, whose own numbers may differ: "the last one", to RestoreDC.
constexpr int kLastSaved = -1;

// Calls function for each handle that there is. Returns what the attribute handle answered.
template <class Result, class Function>
Result OnBoth(const CDC& dc, Result failure, Function function) {
  Result result = failure;
  if (dc.m_hDC != nullptr && dc.m_hDC != dc.m_hAttribDC) result = function(dc.m_hDC);
  if (dc.m_hAttribDC != nullptr) result = function(dc.m_hAttribDC);
  return result;
}

}  // namespace

CDC::~CDC() {
  DeleteDC();
}

BOOL CDC::Attach(HDC dc) {
  if (dc == nullptr || m_hDC != nullptr) return FALSE;
  m_hDC = dc;
  m_hAttribDC = dc;
  return TRUE;
}

HDC CDC::Detach() {
  m_hAttribDC = nullptr;
  return std::exchange(m_hDC, nullptr);
}

BOOL CDC::CreateCompatibleDC(const CDC* dc) {
  const HDC created = ::CreateCompatibleDC(dc != nullptr ? dc->m_hDC : nullptr);
  if (Attach(created)) return TRUE;
  ::DeleteDC(created);
  return FALSE;
}

BOOL CDC::DeleteDC() {
  return m_hDC != nullptr && ::DeleteDC(Detach());
}

HGDIOBJ CDC::SelectObject(HGDIOBJ object) {
  return OnBoth<HGDIOBJ>(*this, nullptr, [&](HDC dc) { return ::SelectObject(dc, object); });
}

int CDC::SaveDC() {
  const int saved = OnBoth(*this, 0, [](HDC dc) { return ::SaveDC(dc); });
  return saved != 0 && m_hDC != m_hAttribDC ? kLastSaved : saved;
}

BOOL CDC::RestoreDC(int savedDC) {
  return OnBoth<BOOL>(*this, FALSE, [&](HDC dc) { return ::RestoreDC(dc, savedDC); });
}

COLORREF CDC::SetTextColor(COLORREF color) {
  return OnBoth<COLORREF>(*this, CLR_INVALID, [&](HDC dc) { return ::SetTextColor(dc, color); });
}

int CDC::SetBkMode(int mode) {
  return OnBoth(*this, 0, [&](HDC dc) { return ::SetBkMode(dc, mode); });
}

int CDC::SetMapMode(int mode) {
  return OnBoth(*this, 0, [&](HDC dc) { return ::SetMapMode(dc, mode); });
}

POINT CDC::SetWindowOrg(int x, int y) {
  POINT previous = {};
  OnBoth<BOOL>(*this, FALSE, [&](HDC dc) { return ::SetWindowOrgEx(dc, x, y, &previous); });
  return previous;
}

void CDC::LPtoDP(LPRECT rect) const {
  ::LPtoDP(m_hAttribDC, reinterpret_cast<LPPOINT>(rect), 2);
}

void CDC::DPtoLP(LPRECT rect) const {
  ::DPtoLP(m_hAttribDC, reinterpret_cast<LPPOINT>(rect), 2);
}

int CDC::IntersectClipRect(LPCRECT rect) {
  return OnBoth<int>(*this, ERROR, [&](HDC dc) {
    return ::IntersectClipRect(dc, rect->left, rect->top, rect->right, rect->bottom);
  });
}

int CDC::ExcludeClipRect(LPCRECT rect) {
  return OnBoth<int>(*this, ERROR, [&](HDC dc) {
    return ::ExcludeClipRect(dc, rect->left, rect->top, rect->right, rect->bottom);
  });
}

BOOL CDC::PtVisible(int x, int y) const {
  return ::PtVisible(m_hDC, x, y);
}

BOOL CDC::RectVisible(LPCRECT rect) const {
  return ::RectVisible(m_hDC, rect);
}

void CDC::FillRect(LPCRECT rect, HBRUSH brush) {
  ::FillRect(m_hDC, rect, brush);
}

void CDC::FillSolidRect(LPCRECT rect, COLORREF color) {
  const COLORREF previous = ::SetBkColor(m_hDC, color);
  ::ExtTextOut(m_hDC, 0, 0, ETO_OPAQUE, rect, nullptr, 0, nullptr);
  ::SetBkColor(m_hDC, previous);
}

BOOL CDC::BitBlt(int x, int y, int width, int height, const CDC* source, int sourceX, int sourceY,
                 DWORD code) {
  return ::BitBlt(m_hDC, x, y, width, height, source->m_hDC, sourceX, sourceY, code);
}

SIZE CDC::GetTextExtent(const std::string& text) const {
  SIZE size = {};
  ::GetTextExtentPoint32(m_hAttribDC, text.c_str(), static_cast<int>(text.size()), &size);
  return size;
}

BOOL CDC::TextOut(int x, int y, LPCSTR text, int count) {
  return ::TextOut(m_hDC, x, y, text, count);
}

BOOL CDC::ExtTextOut(int x, int y, UINT options, LPCRECT rect, LPCSTR text, UINT count, LPINT widths) {
  return ::ExtTextOut(m_hDC, x, y, options, rect, text, count, widths);
}

SIZE CDC::TabbedTextOut(int x, int y, LPCSTR text, int count, int tabs, LPINT tabStops, int tabOrigin) {
  const LONG size = ::TabbedTextOut(m_hDC, x, y, text, count, tabs, tabStops, tabOrigin);
  return {LOWORD(size), HIWORD(size)};
}

int CDC::DrawText(LPCSTR text, int count, LPRECT rect, UINT format) {
  return ::DrawText(m_hDC, text, count, rect, format);
}

int CDC::DrawTextEx(LPSTR text, int count, LPRECT rect, UINT format, LPDRAWTEXTPARAMS parameters) {
  return ::DrawTextEx(m_hDC, text, count, rect, format, parameters);
}

BOOL CDC::GrayString(HBRUSH brush, GRAYSTRINGPROC output, LPARAM data, int count, int x, int y, int width,
                     int height) {
  return ::GrayString(m_hDC, brush, output, data, count, x, y, width, height);
}

int CDC::Escape(int escape, int count, LPCSTR inData, LPVOID outData) {
  return ::Escape(m_hDC, escape, count, inData, outData);
}

CPaintDC::CPaintDC(const CWnd* window) : m_hWnd(window->GetSafeHwnd()) {
  Attach(::BeginPaint(m_hWnd, &m_ps));
}

CPaintDC::~CPaintDC() {
  ::EndPaint(m_hWnd, &m_ps);
  Detach();
}
