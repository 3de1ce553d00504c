#include <windows.h>

#include "handles/drawing_handles.h"
#include "kvtools/kvtools.h"
#include "kvtools/screen_geometry.h"
#include "kvtools/system_function.h"

namespace {

constexpr char kClassName[] = "KVToolsSplashScreen";
constexpr UINT_PTR kEndTimer = 1;

PixelSize SizeOf(HBITMAP bitmap) {
  BITMAP facts = {};
  GetObjectA(bitmap, sizeof facts, &facts);
  return {facts.bmWidth, facts.bmHeight};
}

// In pixels as the process sees them: 96 when the system scales its windows for it.
int DotsPerInch(HWND window) {
  using GetDpiForWindowFunction = UINT(WINAPI*)(HWND);
  const auto getDpi = FindSystemFunction<GetDpiForWindowFunction>("user32.dll", "GetDpiForWindow");
  if (getDpi != nullptr) return static_cast<int>(getDpi(window));
  return GetDeviceCaps(WindowContext(nullptr).Get(), LOGPIXELSX);
}

PixelRect PrimaryWorkArea() {
  RECT area = {};
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &area, 0);
  return {area.left, area.top, {area.right - area.left, area.bottom - area.top}};
}

bool IsKey(UINT message) {
  return message == WM_KEYDOWN || message == WM_SYSKEYDOWN;
}

bool IsClick(UINT message) {
  switch (message) {
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_MBUTTONDOWN:
    case WM_XBUTTONDOWN:
    case WM_NCLBUTTONDOWN:
    case WM_NCRBUTTONDOWN:
    case WM_NCMBUTTONDOWN:
    case WM_NCXBUTTONDOWN:
      return true;
    default:
      return false;
  }
}

class SplashWindow {
 public:
  explicit SplashWindow(HBITMAP bitmap) : m_hBitmap(bitmap) {}  // borrowed
  ~SplashWindow() { Close(); }
  SplashWindow(const SplashWindow&) = delete;
  SplashWindow& operator=(const SplashWindow&) = delete;

  bool Show();
  void RunFor(int milliseconds);

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void Dispatch(const MSG& message);
  void Paint();
  void Close() {
    if (m_hWindow != nullptr) DestroyWindow(m_hWindow);
  }

  HBITMAP m_hBitmap;
  HWND m_hWindow = nullptr;  // null before it is shown and from the moment when it is gone
};

bool SplashWindow::Show() {
  const HINSTANCE program = GetModuleHandleA(nullptr);
  WNDCLASSA windowClass = {};
  windowClass.lpfnWndProc = Procedure;
  windowClass.hInstance = program;
  windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  windowClass.lpszClassName = kClassName;
  // Fails from the second time on, because the class stays.
  RegisterClassA(&windowClass);
  m_hWindow = CreateWindowExA(WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE, kClassName, "", WS_POPUP,
                              0, 0, 1, 1, nullptr, nullptr, program, nullptr);
  if (m_hWindow == nullptr) return false;
  SetWindowLongPtrA(m_hWindow, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  const PixelRect place = PlaceInMiddle(SizeOf(m_hBitmap), DotsPerInch(m_hWindow), PrimaryWorkArea());
  SetWindowPos(m_hWindow, HWND_TOPMOST, place.left, place.top, place.size.width, place.size.height,
               SWP_NOACTIVATE | SWP_SHOWWINDOW);
  UpdateWindow(m_hWindow);
  return true;
}

void SplashWindow::RunFor(int milliseconds) {
  // The deadline holds even while messages never cease. The timer closes the window in time also when
  // a handler that we dispatched to runs a message loop of its own, say for a message box.
  const ULONGLONG deadline = GetTickCount64() + static_cast<ULONGLONG>(milliseconds);
  SetTimer(m_hWindow, kEndTimer, static_cast<UINT>(milliseconds), nullptr);
  while (m_hWindow != nullptr) {
    const ULONGLONG now = GetTickCount64();
    if (now >= deadline) return Close();
    MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(deadline - now), QS_ALLINPUT,
                                MWMO_INPUTAVAILABLE);
    MSG message;
    if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) Dispatch(message);
  }
}

void SplashWindow::Dispatch(const MSG& message) {
  if (message.message == WM_QUIT) {
    Close();
    PostQuitMessage(static_cast<int>(message.wParam));
    return;
  }
  if (IsKey(message.message)) return Close();
  // Closed before another window hears of the click: it may begin to drag, or open something.
  if (IsClick(message.message) && message.hwnd != m_hWindow) Close();
  TranslateMessage(&message);
  DispatchMessageA(&message);
}

LRESULT CALLBACK SplashWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* splash = reinterpret_cast<SplashWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  if (splash == nullptr) return DefWindowProcA(window, message, wParam, lParam);
  return splash->Handle(window, message, wParam, lParam);
}

LRESULT SplashWindow::Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (IsClick(message) || message == WM_TIMER) {
    Close();
    return 0;
  }
  switch (message) {
    case WM_MOUSEACTIVATE:
      return MA_NOACTIVATE;
    case WM_ERASEBKGND:
      return 1;  // painting covers everything
    case WM_PAINT:
      Paint();
      return 0;
    case WM_DESTROY:
      m_hWindow = nullptr;
      return 0;
    default:
      return DefWindowProcA(window, message, wParam, lParam);
  }
}

void SplashWindow::Paint() {
  PAINTSTRUCT paint;
  HDC target = BeginPaint(m_hWindow, &paint);
  if (target == nullptr) return;
  {
    const MemoryContext source(target);
    const Selected picture(source.Get(), m_hBitmap);
    const PixelSize bitmap = SizeOf(m_hBitmap);
    RECT client = {};
    GetClientRect(m_hWindow, &client);
    SetStretchBltMode(target, HALFTONE);
    SetBrushOrgEx(target, 0, 0, nullptr);  // as that mode requires
    StretchBlt(target, 0, 0, client.right, client.bottom, source.Get(), 0, 0, bitmap.width, bitmap.height,
               SRCCOPY);
  }
  EndPaint(m_hWindow, &paint);
}

}  // namespace

int KVT_ShowSplashScreen(int bitmapId, int milliseconds) {
  if (milliseconds <= 0) return 0;
  const GdiObject<HBITMAP> bitmap(static_cast<HBITMAP>(LoadImageA(
      GetModuleHandleA(nullptr), MAKEINTRESOURCEA(bitmapId), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
  if (bitmap == nullptr) return 0;
  SplashWindow splash(bitmap.get());
  if (!splash.Show()) return 0;
  splash.RunFor(milliseconds);
  return 1;
}
