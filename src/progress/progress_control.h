// A progress bar that paints itself and writes over the bar how much time is left, with a caption that
// names the current operation before it. The text has one colour on the done part and another on the rest.
//
// The owner subclasses it onto a progress bar of a dialog and uses it as any other. Window's thread,
// except that positions and captions may be sent to the window by others.
//
// Each position and each caption pumps the messages of the window's thread first, so a handler of the
// owner may run within SetPos, and may end the window, but not the object. Another thread that has sent
// one gets its answer before that: a handler may wait for that thread.
#ifndef MOSAICON_PROGRESS_PROGRESS_CONTROL_H_
#define MOSAICON_PROGRESS_PROGRESS_CONTROL_H_

#include <cstdint>
#include <string>

#include "mfc/gdi_objects.h"
#include "mfc/progress_ctrl.h"
#include "progress/bar_geometry.h"

// The registered message of this name sets the caption: lParam is a const char* that is read before the
// message returns; null leaves the caption alone. The bar is not repainted.
extern const UINT WM_SETCUROP_MT;

class CDC;

class TProgressTimeToComplete : public CProgressCtrl {
  DECLARE_MESSAGE_MAP()

 public:
  TProgressTimeToComplete();

  // The bar is not repainted.
  void SetCaption(const std::string& caption) { m_caption = caption; }
  // The work begins: the time left is estimated from here on.
  void RestartClock();

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
  void PreSubclassWindow() override;
  // The words for the time left, asked for while painting. For subclasses that tell it differently.
  virtual std::string FormatTimeToComplete(double fraction, double secondsLeft);

  CFont m_fontHorizontal;
  CFont m_fontVertical;  // its text runs upwards

 public:
  std::int32_t m_startTicks;  // of clock(): when the work began
  double m_fraction = 0.0;    // as of the last paint
  BOOL m_bShowTime = TRUE;
  std::string m_idleText;  // while it is too early for an estimate
  std::string m_caption;
  COLORREF m_barColor;

 private:
  LRESULT OnPosition(WPARAM position);
  LRESULT OnCaption(WPARAM wParam, LPARAM lParam);
  static bool ReleaseSender(LRESULT answer);
  bool PumpMessages();
  // For that many dots per inch, which differ from monitor to monitor.
  void MakeFonts(UINT dpi);
  LRESULT OnDpiChanged(WPARAM wParam, LPARAM lParam);
  void OnPaint();
  BOOL OnEraseBkgnd(HDC dc);
  void FillBackground(HDC paintDC, const RECT& client, CDC& dc);
  void FillBar(const BarRect& client, CDC& dc);
  void DrawBarText(const std::string& text, const BarRect& client, CDC& dc);
  BarDirection Direction() const;

  unsigned m_nPositions = 0;  // that have arrived so far
};

#endif  // MOSAICON_PROGRESS_PROGRESS_CONTROL_H_
