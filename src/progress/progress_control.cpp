#include "progress/progress_control.h"

// After windows.h.
#include <commctrl.h>

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "kvtools/kvtools.h"
#include "mfc/dpi.h"
#include "progress/bar_text.h"
#include "progress/progress_mem_dc.h"
#include "progress/time_text.h"

namespace {

constexpr int kFontTenthsOfAPoint = 90;
constexpr char kFontFace[] = "MS Sans";
constexpr LONG kUpwards = 900;  // tenths of a degree
constexpr UINT kCentered = DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX;

RECT ToRect(const BarRect& rect) {
  return {rect.left, rect.top, rect.right, rect.bottom};
}

BarRect ToBarRect(const RECT& rect) {
  return {static_cast<int>(rect.left), static_cast<int>(rect.top), static_cast<int>(rect.right),
          static_cast<int>(rect.bottom)};
}

std::int32_t ClockTicks() {
  static_assert(CLOCKS_PER_SEC == 1000);
  return static_cast<std::int32_t>(clock());
}

}  // namespace

const UINT WM_SETCUROP_MT = RegisterWindowMessageA("WM_SETCUROP_MT");

BEGIN_MESSAGE_MAP(TProgressTimeToComplete, CProgressCtrl)
ON_WM_PAINT()
ON_WM_ERASEBKGND()
ON_MESSAGE(afx::kDpiChangedAfterParent, TProgressTimeToComplete::OnDpiChanged)
END_MESSAGE_MAP()

TProgressTimeToComplete::TProgressTimeToComplete()
    : m_startTicks(ClockTicks()), m_barColor(GetSysColor(COLOR_HIGHLIGHT)) {
  MakeFonts(afx::GetWindowDpi(nullptr));
}

void TProgressTimeToComplete::RestartClock() {
  m_startTicks = ClockTicks();
}

void TProgressTimeToComplete::MakeFonts(UINT dpi) {
  LOGFONT description = {};
  description.lfCharSet = DEFAULT_CHARSET;
  description.lfHeight = kFontTenthsOfAPoint;
  lstrcpyn(description.lfFaceName, kFontFace, LF_FACESIZE);
  m_fontHorizontal.DeleteObject();
  m_fontHorizontal.CreatePointFontIndirect(&description, dpi);
  description.lfEscapement = kUpwards;
  description.lfOrientation = kUpwards;
  m_fontVertical.DeleteObject();
  m_fontVertical.CreatePointFontIndirect(&description, dpi);
}

void TProgressTimeToComplete::PreSubclassWindow() {
  MakeFonts(afx::GetWindowDpi(m_hWnd));
}

LRESULT TProgressTimeToComplete::OnDpiChanged(WPARAM /*wParam*/, LPARAM /*lParam*/) {
  const LRESULT result = Default();
  MakeFonts(afx::GetWindowDpi(m_hWnd));
  InvalidateRect(m_hWnd, nullptr, FALSE);
  return result;
}

LRESULT TProgressTimeToComplete::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == PBM_SETPOS) return OnPosition(wParam);
  if (message == WM_SETCUROP_MT) return OnCaption(wParam, lParam);
  return CProgressCtrl::WindowProc(message, wParam, lParam);
}

LRESULT TProgressTimeToComplete::OnPosition(WPARAM position) {
  const int before = GetPos();
  const bool released = ReleaseSender(before);
  const unsigned arrival = ++m_nPositions;
  if (!PumpMessages()) return 0;
  // A sender that does not wait for its answer may have sent a newer one meanwhile.
  if (released && arrival != m_nPositions) return before;
  const auto replaced = CProgressCtrl::WindowProc(PBM_SETPOS, position, 0);
  // The time goes on where the bar stands still.
  if (static_cast<int>(replaced) == GetPos()) InvalidateRect(m_hWnd, nullptr, FALSE);
  return replaced;
}

LRESULT TProgressTimeToComplete::OnCaption(WPARAM wParam, LPARAM lParam) {
  // The sender's text lives until it has its answer.
  std::optional<std::string> caption;
  if (lParam != 0) caption = reinterpret_cast<const char*>(lParam);
  ReleaseSender(0);
  if (!PumpMessages()) return 0;
  if (caption) m_caption = *caption;
  return CProgressCtrl::WindowProc(WM_SETCUROP_MT, wParam, lParam);
}

// A handler that is pumped may wait for the thread that has sent the message, which must not wait for the
// handler then. Whether there was such a thread.
bool TProgressTimeToComplete::ReleaseSender(LRESULT answer) {
  return (InSendMessageEx(nullptr) & (ISMEX_SEND | ISMEX_REPLIED)) == ISMEX_SEND && ReplyMessage(answer);
}

// False when a handler has ended the window.
bool TProgressTimeToComplete::PumpMessages() {
  const HWND window = m_hWnd;
  KVT_PumpMessages();
  return FromHandlePermanent(window) == this;
}

std::string TProgressTimeToComplete::FormatTimeToComplete(double /*fraction*/, double secondsLeft) {
  return m_bShowTime ? FormatSecondsLeft(secondsLeft) : std::string();
}

BOOL TProgressTimeToComplete::OnEraseBkgnd(HDC /*dc*/) {
  return TRUE;
}

void TProgressTimeToComplete::OnPaint() {
  // All of it: where only a piece is painted, the old text would stand beside the new one.
  InvalidateRect(m_hWnd, nullptr, FALSE);
  CPaintDC paintDC(this);
  CTProgressTimeToCompleteMemDC dc(&paintDC);
  const std::int32_t now = ClockTicks();

  int lower = 0;
  int upper = 0;
  GetRange(lower, upper);
  RECT clientRect = {};
  GetClientRect(m_hWnd, &clientRect);
  m_fraction = CompletedFraction(GetPos(), lower, upper);

  FillBackground(paintDC.m_hDC, clientRect, dc);
  const BarRect client = ToBarRect(clientRect);
  FillBar(client, dc);
  const std::string text = BarText(
      m_fraction, ElapsedSeconds(m_startTicks, now), m_caption, m_idleText,
      [this](double fraction, double secondsLeft) { return FormatTimeToComplete(fraction, secondsLeft); });
  DrawBarText(text, client, dc);
}

// As the parent paints its static controls, so that the bar lies in the dialog's own background.
void TProgressTimeToComplete::FillBackground(HDC paintDC, const RECT& client, CDC& dc) {
  const HWND parent = GetParent(m_hWnd);
  if (parent == nullptr) return;
  const LRESULT brush = ::SendMessageA(parent, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(paintDC),
                                       reinterpret_cast<LPARAM>(m_hWnd));
  dc.FillRect(&client, reinterpret_cast<HBRUSH>(brush));
}

void TProgressTimeToComplete::FillBar(const BarRect& client, CDC& dc) {
  const bool smooth = (GetWindowLongPtrA(m_hWnd, GWL_STYLE) & PBS_SMOOTH) != 0;
  const std::vector<BarRect> pieces = smooth
                                          ? std::vector<BarRect>{FilledRect(client, Direction(), m_fraction)}
                                          : BlockRects(client, Direction(), m_fraction);
  const CBrush brush(m_barColor);
  for (const BarRect& piece : pieces) {
    const RECT rect = ToRect(piece);
    dc.FillRect(&rect, brush);
  }
}

void TProgressTimeToComplete::DrawBarText(const std::string& text, const BarRect& client, CDC& dc) {
  const BarDirection direction = Direction();
  const bool horizontal = direction == BarDirection::kHorizontal;
  const RECT filled = ToRect(FilledRect(client, direction, m_fraction));
  RECT clientRect = ToRect(client);
  const int length = static_cast<int>(text.size());

  dc.SetBkMode(TRANSPARENT);
  const HGDIOBJ oldFont = dc.SelectObject(horizontal ? m_fontHorizontal : m_fontVertical);
  const SIZE extent = dc.GetTextExtent(text);
  const BarPoint origin = VerticalTextOrigin(client, extent.cx, extent.cy);
  for (const bool onFilled : {true, false}) {
    const int saved = dc.SaveDC();
    if (onFilled) {
      dc.IntersectClipRect(&filled);
    } else {
      dc.ExcludeClipRect(&filled);
    }
    dc.SetTextColor(GetSysColor(onFilled ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    if (horizontal) {
      dc.DrawText(text.c_str(), length, &clientRect, kCentered);
    } else {
      dc.ExtTextOut(origin.x, origin.y, ETO_CLIPPED, &clientRect, text.c_str(), static_cast<UINT>(length),
                    nullptr);
    }
    dc.RestoreDC(saved);
  }
  dc.SelectObject(oldFont);
}

BarDirection TProgressTimeToComplete::Direction() const {
  const bool vertical = (GetWindowLongPtrA(m_hWnd, GWL_STYLE) & PBS_VERTICAL) != 0;
  return vertical ? BarDirection::kVertical : BarDirection::kHorizontal;
}
