// Runs in a program with testing/splash.rc. Needs a screen; under Wine, an X display.

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "kvtools/kvtools.h"
#include "kvtools/screen_geometry.h"

namespace {

constexpr int kBitmapId = 101;
constexpr PixelSize kBitmapSize = {60, 40};
constexpr int kLong = 20000;       // ms; a test that waits for that has failed
constexpr ULONGLONG kSoon = 8000;  // ms; long for a busy machine, short beside kLong

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kGreen = RGB(0, 255, 0);
constexpr COLORREF kBlue = RGB(0, 0, 255);
constexpr COLORREF kYellow = RGB(255, 255, 0);
constexpr COLORREF kBackdrop = RGB(40, 80, 120);
constexpr COLORREF kCover = RGB(200, 0, 200);

// As the product does in its manifest, and before this program makes its first window: the tests here
// and of the screens then see physical pixels at whatever scaling.
[[maybe_unused]] const BOOL kSeesPhysicalPixels = SetProcessDPIAware();

COLORREF ScreenColour(POINT point) {
  HDC screen = GetDC(nullptr);
  const COLORREF colour = GetPixel(screen, point.x, point.y);
  ReleaseDC(nullptr, screen);
  return colour;
}

// Where the bitmap must be, from other functions than the ones that place it.
RECT ExpectedPlace() {
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfoA(MonitorFromPoint({0, 0}, MONITOR_DEFAULTTOPRIMARY), &monitor);
  HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  const int width = MulDiv(kBitmapSize.width, dpi, 96);
  const int height = MulDiv(kBitmapSize.height, dpi, 96);
  const int left = (monitor.rcWork.left + monitor.rcWork.right - width) / 2;
  const int top = (monitor.rcWork.top + monitor.rcWork.bottom - height) / 2;
  return {left, top, left + width, top + height};
}

// A point inside the place, in fractions of it.
POINT Inside(double x, double y) {
  const RECT place = ExpectedPlace();
  return {place.left + static_cast<LONG>(x * (place.right - place.left)),
          place.top + static_cast<LONG>(y * (place.bottom - place.top))};
}

BOOL CALLBACK KeepSplash(HWND window, LPARAM found) {
  char name[64] = "";
  GetClassNameA(window, name, sizeof name);
  if (std::string(name) != "KVToolsSplashScreen") return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

// Null when there is none in this thread.
HWND FindSplash() {
  HWND found = nullptr;
  EnumThreadWindows(GetCurrentThreadId(), KeepSplash, reinterpret_cast<LPARAM>(&found));
  return found;
}

// What happens at which time, in ms, while messages are dispatched.
std::map<UINT_PTR, std::function<void()>>& Events() {
  static std::map<UINT_PTR, std::function<void()>> events;
  return events;
}

void CALLBACK RunEvent(HWND, UINT, UINT_PTR timer, DWORD) {
  KillTimer(nullptr, timer);
  const auto event = Events().find(timer);
  if (event == Events().end()) return;
  const std::function<void()> action = event->second;
  Events().erase(event);
  action();
}

void After(UINT milliseconds, std::function<void()> action) {
  Events()[SetTimer(nullptr, 0, milliseconds, RunEvent)] = std::move(action);
}

void DispatchFor(ULONGLONG milliseconds) {
  const ULONGLONG end = GetTickCount64() + milliseconds;
  while (GetTickCount64() < end) KVT_PumpMessages();
}

// A plain window of this colour, not shown yet. The brush belongs to the class.
HWND MakeWindow(const char* className, WNDPROC procedure, COLORREF colour, DWORD extendedStyle, RECT place) {
  WNDCLASSA windowClass = {};
  windowClass.lpfnWndProc = procedure;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.hbrBackground = CreateSolidBrush(colour);
  windowClass.lpszClassName = className;
  if (RegisterClassA(&windowClass) == 0) DeleteObject(windowClass.hbrBackground);
  return CreateWindowExA(extendedStyle, className, "", WS_POPUP, place.left, place.top,
                         place.right - place.left, place.bottom - place.top, nullptr, nullptr,
                         windowClass.hInstance, nullptr);
}

void PressMouse(POINT point) {
  SetCursorPos(point.x, point.y);
  INPUT inputs[2] = {};
  inputs[0].type = INPUT_MOUSE;
  inputs[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
  inputs[1].type = INPUT_MOUSE;
  inputs[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
  SendInput(2, inputs, sizeof(INPUT));
}

void PressKey(WORD key) {
  INPUT inputs[2] = {};
  inputs[0].type = INPUT_KEYBOARD;
  inputs[0].ki.wVk = key;
  inputs[1] = inputs[0];
  inputs[1].ki.dwFlags = KEYEVENTF_KEYUP;
  SendInput(2, inputs, sizeof(INPUT));
}

// In front of a window of this program that covers the primary screen and has the focus. One window
// for all tests, because without a window manager Wine takes seconds to close it.
class Splash : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    const RECT screen = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    s_hBackdrop = MakeWindow("SplashTestBackdrop", Count, kBackdrop, 0, screen);
    ShowWindow(s_hBackdrop, SW_SHOW);
  }
  static void TearDownTestSuite() {
    if (s_hBackdrop != nullptr) DestroyWindow(s_hBackdrop);
  }
  void SetUp() override {
    ASSERT_NE(s_hBackdrop, nullptr) << "no screen: under Wine, DISPLAY must name an X server";
    SetForegroundWindow(s_hBackdrop);
    SetFocus(s_hBackdrop);
    for (int i = 0; i < 600 && ScreenColour(Inside(0.25, 0.25)) != kBackdrop; ++i) DispatchFor(100);
    ASSERT_EQ(ScreenColour(Inside(0.25, 0.25)), kBackdrop);
    ASSERT_EQ(GetForegroundWindow(), s_hBackdrop);
    ASSERT_EQ(GetFocus(), s_hBackdrop);
    s_nClicks = 0;
    s_nKeys = 0;
    s_nDeactivations = 0;
  }
  void TearDown() override {
    EXPECT_TRUE(Events().empty()) << "not everything happened that should have";
    Events().clear();
    DispatchFor(100);
  }

  // The time in ms that it took.
  ULONGLONG Show(int milliseconds) {
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(KVT_ShowSplashScreen(kBitmapId, milliseconds), 1);
    const ULONGLONG elapsed = GetTickCount64() - start;
    EXPECT_EQ(FindSplash(), nullptr);
    return elapsed;
  }

  static LRESULT CALLBACK Count(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_LBUTTONDOWN) ++s_nClicks;
    if (message == WM_KEYDOWN) ++s_nKeys;
    if (message == WM_ACTIVATE && LOWORD(wParam) == WA_INACTIVE) ++s_nDeactivations;
    return DefWindowProcA(window, message, wParam, lParam);
  }

  static inline int s_nClicks = 0;
  static inline int s_nKeys = 0;
  static inline int s_nDeactivations = 0;
  static inline HWND s_hBackdrop = nullptr;
};

TEST_F(Splash, ShowsTheBitmapInTheMiddleOfTheWorkArea) {
  const RECT expected = ExpectedPlace();
  RECT place = {};
  COLORREF colours[4] = {};
  COLORREF outside[2] = {};
  After(800, [&] {
    GetWindowRect(FindSplash(), &place);
    colours[0] = ScreenColour(Inside(0.25, 0.25));
    colours[1] = ScreenColour(Inside(0.75, 0.25));
    colours[2] = ScreenColour(Inside(0.25, 0.75));
    colours[3] = ScreenColour(Inside(0.75, 0.75));
    outside[0] = ScreenColour({expected.left - 2, expected.top + 1});
    outside[1] = ScreenColour({expected.right + 1, expected.bottom - 1});
  });
  Show(1600);
  EXPECT_TRUE(EqualRect(&place, &expected))
      << place.left << " " << place.top << " " << place.right << " " << place.bottom;
  EXPECT_EQ(colours[0], kRed);
  EXPECT_EQ(colours[1], kGreen);
  EXPECT_EQ(colours[2], kBlue);
  EXPECT_EQ(colours[3], kYellow);
  EXPECT_EQ(outside[0], kBackdrop);
  EXPECT_EQ(outside[1], kBackdrop);
}

TEST_F(Splash, IsGoneAfterItsTime) {
  const ULONGLONG elapsed = Show(1000);
  EXPECT_GE(elapsed, 1000U);
  EXPECT_LE(elapsed, kSoon);
  DispatchFor(500);
  for (const double x : {0.25, 0.75}) EXPECT_EQ(ScreenColour(Inside(x, 0.25)), kBackdrop);
}

TEST_F(Splash, IsATopmostToolWindow) {
  DWORD style = 0;
  DWORD extendedStyle = 0;
  HWND owner = s_hBackdrop;
  After(300, [&] {
    style = static_cast<DWORD>(GetWindowLongPtrA(FindSplash(), GWL_STYLE));
    extendedStyle = static_cast<DWORD>(GetWindowLongPtrA(FindSplash(), GWL_EXSTYLE));
    owner = GetWindow(FindSplash(), GW_OWNER);
  });
  Show(600);
  EXPECT_EQ(style & (WS_POPUP | WS_VISIBLE | WS_CAPTION | WS_BORDER | WS_THICKFRAME), WS_POPUP | WS_VISIBLE);
  EXPECT_EQ(extendedStyle & (WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_APPWINDOW),
            static_cast<DWORD>(WS_EX_TOOLWINDOW | WS_EX_TOPMOST));
  EXPECT_EQ(owner, nullptr);
}

TEST_F(Splash, LeavesTheFocusWhereItIs) {
  HWND foreground = nullptr;
  HWND active = nullptr;
  HWND focus = nullptr;
  After(500, [&] {
    foreground = GetForegroundWindow();
    active = GetActiveWindow();
    focus = GetFocus();
  });
  Show(1000);
  EXPECT_EQ(foreground, s_hBackdrop);
  EXPECT_EQ(active, s_hBackdrop);
  EXPECT_EQ(focus, s_hBackdrop);
  EXPECT_EQ(GetForegroundWindow(), s_hBackdrop);
  EXPECT_EQ(GetFocus(), s_hBackdrop);
  EXPECT_EQ(s_nDeactivations, 0);
}

TEST_F(Splash, EndsWithAClickOnIt) {
  After(500, [] { PressMouse(Inside(0.5, 0.5)); });
  EXPECT_LE(Show(kLong), kSoon);
  EXPECT_EQ(s_nClicks, 0);
  EXPECT_EQ(s_nDeactivations, 0);
  EXPECT_EQ(GetForegroundWindow(), s_hBackdrop);
}

TEST_F(Splash, EndsWithAClickOnAnotherWindowWhichGetsIt) {
  After(500, [] { PressMouse({ExpectedPlace().left - 20, ExpectedPlace().top}); });
  EXPECT_LE(Show(kLong), kSoon);
  EXPECT_EQ(s_nClicks, 1);
}

TEST_F(Splash, EndsWithAKeyAndUsesItUp) {
  After(500, [] { PressKey(VK_ESCAPE); });
  EXPECT_LE(Show(kLong), kSoon);
  DispatchFor(300);
  EXPECT_EQ(s_nKeys, 0);
  PressKey(VK_ESCAPE);
  DispatchFor(300);
  EXPECT_EQ(s_nKeys, 1);
}

TEST_F(Splash, LeavesQuitToTheOuterLoop) {
  After(300, [] { PostQuitMessage(7); });
  EXPECT_LE(Show(kLong), kSoon);
  MSG message = {};
  ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(message.wParam, 7U);
}

TEST_F(Splash, IsPaintedAgainAfterItWasCovered) {
  HWND cover = nullptr;
  COLORREF covered = 0;
  COLORREF uncovered = 0;
  After(400, [&] {
    cover = MakeWindow("SplashTestCover", DefWindowProcA, kCover, WS_EX_TOPMOST | WS_EX_TOOLWINDOW,
                       ExpectedPlace());
    SetWindowPos(cover, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
  });
  After(1400, [&] {
    covered = ScreenColour(Inside(0.25, 0.25));
    DestroyWindow(cover);
  });
  After(2400, [&] { uncovered = ScreenColour(Inside(0.25, 0.25)); });
  Show(2800);
  EXPECT_EQ(covered, kCover);
  EXPECT_EQ(uncovered, kRed);
}

TEST_F(Splash, GoesInTimeWhenAHandlerDispatchesMessagesItself) {
  bool wasThere = false;
  bool wasGone = false;
  After(200, [&] {
    wasThere = FindSplash() != nullptr;
    DispatchFor(1500);
    wasGone = FindSplash() == nullptr;
  });
  Show(800);
  EXPECT_TRUE(wasThere);
  EXPECT_TRUE(wasGone);
}

TEST_F(Splash, CanBeShownAgain) {
  COLORREF colour = 0;
  Show(200);
  After(500, [&] { colour = ScreenColour(Inside(0.25, 0.25)); });
  Show(1000);
  EXPECT_EQ(colour, kRed);
}

TEST_F(Splash, IsNotShownWithoutBitmapOrTime) {
  const ULONGLONG start = GetTickCount64();
  EXPECT_EQ(KVT_ShowSplashScreen(kBitmapId + 1, kLong), 0);
  EXPECT_EQ(KVT_ShowSplashScreen(kBitmapId, 0), 0);
  EXPECT_EQ(KVT_ShowSplashScreen(kBitmapId, -1), 0);
  EXPECT_LE(GetTickCount64() - start, kSoon);
  EXPECT_EQ(FindSplash(), nullptr);
}

}  // namespace
