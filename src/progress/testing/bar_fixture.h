// A progress bar in a window on the screen, with an owner that records what it is asked. For tests.
#ifndef MOSAICON_PROGRESS_TESTING_BAR_FIXTURE_H_
#define MOSAICON_PROGRESS_TESTING_BAR_FIXTURE_H_

#include <gtest/gtest.h>
#include <windows.h>
// After windows.h.
#include <commctrl.h>

#include <functional>
#include <string>
#include <vector>

#include "mfc/testing/canvas.h"
#include "progress/progress_control.h"

inline constexpr COLORREF kOwnerColor = RGB(200, 224, 176);
inline constexpr UINT kOwnerMessage = WM_APP + 1;

class Owner : public CWnd {
 public:
  Owner() {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = ::DefWindowProcA;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "BarOwner";
    RegisterClassA(&windowClass);
    SubclassWindow(CreateWindowExA(WS_EX_TOPMOST, "BarOwner", "", WS_POPUP, 50, 50, 300, 300, nullptr,
                                   nullptr, windowClass.hInstance, nullptr));
    // Without the focus, for which Wine would wait.
    ShowWindow(m_hWnd, SW_SHOWNOACTIVATE);
  }
  ~Owner() override { DestroyWindow(m_hWnd); }

  int handled = 0;                  // owner's messages
  std::function<void()> onMessage;  // what it does with each
  HWND askedBy = nullptr;           // the control that asked for its background
  HWND askedFor = nullptr;          // the window that the control's device context paints

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == kOwnerMessage) {
      ++handled;
      if (onMessage) onMessage();
      return 0;
    }
    if (message == WM_CTLCOLORSTATIC) {
      askedBy = reinterpret_cast<HWND>(lParam);
      askedFor = WindowFromDC(reinterpret_cast<HDC>(wParam));
      return reinterpret_cast<LRESULT>(m_brush.GetSafeHandle());
    }
    return CWnd::WindowProc(message, wParam, lParam);
  }

 private:
  CBrush m_brush{kOwnerColor};
};

// Says its own words when it has some, and keeps what it was asked.
class WordedBar : public TProgressTimeToComplete {
 public:
  std::string words;
  double askedFraction = -1.0;
  double askedSeconds = -1.0;
  int asked = 0;

 protected:
  std::string FormatTimeToComplete(double fraction, double secondsLeft) override {
    askedFraction = fraction;
    askedSeconds = secondsLeft;
    ++asked;
    return words.empty() ? TProgressTimeToComplete::FormatTimeToComplete(fraction, secondsLeft) : words;
  }
};

class BarTest : public testing::Test {
 protected:
  void SetUp() override { InitCommonControls(); }
  void TearDown() override {
    if (m_bar.GetSafeHwnd() != nullptr) DestroyWindow(m_bar.GetSafeHwnd());
  }

  // Client area: 200 pixels long and 24 wide.
  void Create(DWORD style) {
    const bool vertical = (style & PBS_VERTICAL) != 0;
    m_nWidth = vertical ? 24 : 200;
    m_nHeight = vertical ? 200 : 24;
    const HWND control =
        CreateWindowExA(0, PROGRESS_CLASSA, "", WS_CHILD | WS_VISIBLE | style, 10, 10, m_nWidth, m_nHeight,
                        m_owner.GetSafeHwnd(), nullptr, nullptr, nullptr);
    ASSERT_NE(control, nullptr);
    // The control gives itself an edge.
    RECT client = {};
    GetClientRect(control, &client);
    SetWindowPos(control, nullptr, 0, 0, 2 * m_nWidth - client.right, 2 * m_nHeight - client.bottom,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    GetClientRect(control, &client);
    ASSERT_EQ(client.right, m_nWidth);
    ASSERT_EQ(client.bottom, m_nHeight);
    ASSERT_TRUE(m_bar.SubclassWindow(control));
  }

  void Repaint() {
    InvalidateRect(m_bar.GetSafeHwnd(), nullptr, TRUE);
    UpdateWindow(m_bar.GetSafeHwnd());
  }

  // What the screen shows.
  std::vector<COLORREF> Shown() const {
    TestCanvas copy(m_nWidth, m_nHeight);
    const HDC window = GetDC(m_bar.GetSafeHwnd());
    ::BitBlt(copy.m_hDC, 0, 0, m_nWidth, m_nHeight, window, 0, 0, SRCCOPY);
    ReleaseDC(m_bar.GetSafeHwnd(), window);
    return copy.Pixels();
  }

  Owner m_owner;
  WordedBar m_bar;
  int m_nWidth = 0;
  int m_nHeight = 0;
};

#endif  // MOSAICON_PROGRESS_TESTING_BAR_FIXTURE_H_
