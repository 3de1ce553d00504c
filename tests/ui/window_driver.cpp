#include "ui/window_driver.h"

namespace {

constexpr DWORD kInterval = 10;     // ms
constexpr UINT kSendLimit = 60000;  // ms
constexpr DWORD kKillLimit = 5000;  // ms
constexpr UINT kKilledExitCode = 250;
constexpr LPARAM kKeyDown = 1;
constexpr LPARAM kKeyUp = static_cast<LPARAM>(0xC0000001);

struct WindowSearch {
  DWORD process;
  std::vector<Window> found;
};

BOOL CALLBACK CollectWindow(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<WindowSearch*>(parameter);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process == search.process && IsWindowVisible(window)) search.found.emplace_back(window);
  return TRUE;
}

}  // namespace

bool WaitUntil(const std::function<bool()>& condition, DWORD patience) {
  const ULONGLONG deadline = GetTickCount64() + patience;
  while (!condition()) {
    if (GetTickCount64() > deadline) return false;
    Sleep(kInterval);
  }
  return true;
}

std::vector<Window> Window::Children() const {
  std::vector<Window> children;
  for (HWND child = GetWindow(m_hWnd, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
    children.emplace_back(child);
  }
  return children;
}

std::string Window::Text() const {
  std::vector<char> buffer(static_cast<size_t>(Send(WM_GETTEXTLENGTH)) + 1);
  const auto length = static_cast<size_t>(
      Send(WM_GETTEXT, static_cast<WPARAM>(buffer.size()), reinterpret_cast<LPARAM>(buffer.data())));
  return std::string(buffer.data(), length < buffer.size() ? length : 0);
}

std::string Window::ClassName() const {
  char name[256] = "";
  GetClassNameA(m_hWnd, name, sizeof name);
  return name;
}

RECT Window::Place() const {
  RECT place = {};
  GetWindowRect(m_hWnd, &place);
  return place;
}

Window Window::Focus() const {
  GUITHREADINFO info = {};
  info.cbSize = sizeof info;
  GetGUIThreadInfo(GetWindowThreadProcessId(m_hWnd, nullptr), &info);
  return Window(info.hwndFocus);
}

void Window::SetText(const std::string& text) const {
  Send(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void Window::Click() const {
  Post(BM_CLICK);
}

bool Window::Check(bool checked) const {
  if (IsChecked() != checked) Click();
  return WaitUntil([this, checked] { return IsChecked() == checked; });
}

bool Window::Choose(int index) const {
  if (Send(CB_SETCURSEL, static_cast<WPARAM>(index)) != index) return false;
  const WPARAM notification = MAKEWPARAM(Id(), CBN_SELCHANGE);
  Window(GetParent(m_hWnd)).Send(WM_COMMAND, notification, reinterpret_cast<LPARAM>(m_hWnd));
  return true;
}

bool Window::TakeFocus() const {
  Window(GetAncestor(m_hWnd, GA_ROOT)).Post(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(m_hWnd), TRUE);
  return WaitUntil([this] { return Focus() == *this; });
}

void Window::PressKey(WPARAM key) const {
  Post(WM_KEYDOWN, key, kKeyDown);
  Post(WM_KEYUP, key, kKeyUp);
}

void Window::Post(UINT message, WPARAM wParam, LPARAM lParam) const {
  // A null handle would be the caller's own thread.
  if (m_hWnd != nullptr) PostMessageA(m_hWnd, message, wParam, lParam);
}

LRESULT Window::Send(UINT message, WPARAM wParam, LPARAM lParam) const {
  DWORD_PTR result = 0;
  if (m_hWnd == nullptr ||
      SendMessageTimeoutA(m_hWnd, message, wParam, lParam, SMTO_NORMAL, kSendLimit, &result) == 0) {
    return 0;
  }
  return static_cast<LRESULT>(result);
}

std::optional<double> Window::AnswerTime(DWORD limit) const {
  LARGE_INTEGER frequency, start, end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&start);
  if (SendMessageTimeoutA(m_hWnd, WM_NULL, 0, 0, SMTO_NORMAL, limit, nullptr) == 0) return {};
  QueryPerformanceCounter(&end);
  return 1000.0 * static_cast<double>(end.QuadPart - start.QuadPart) /
         static_cast<double>(frequency.QuadPart);
}

bool Window::WaitUntilGone(DWORD patience) const {
  return WaitUntil([this] { return !Exists(); }, patience);
}

bool Window::WaitUntilEnabled(DWORD patience) const {
  return WaitUntil([this] { return IsEnabled(); }, patience);
}

Program::Program(const std::string& path, const std::string& arguments)
    : Program(AsItIs(), "\"" + path + "\"" + (arguments.empty() ? "" : " " + arguments)) {}

std::unique_ptr<Program> Program::FromCommandLine(const std::string& commandLine, HANDLE output) {
  return std::unique_ptr<Program>(new Program(AsItIs(), commandLine, output));
}

Program::Program(AsItIs, std::string commandLine, HANDLE output) {
  // Otherwise the system tells the places of windows in pixels of other sizes.
  SetProcessDPIAware();
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  if (output != nullptr) {
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
  }
  // It may write into the command line.
  if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, output != nullptr, 0, nullptr, nullptr,
                      &startup, &m_process)) {
    m_process = {};
  }
}

Program::~Program() {
  if (!IsStarted()) return;
  if (IsRunning()) {
    TerminateProcess(m_process.hProcess, kKilledExitCode);
    WaitForSingleObject(m_process.hProcess, kKillLimit);
  }
  CloseHandle(m_process.hThread);
  CloseHandle(m_process.hProcess);
}

bool Program::IsRunning() const {
  return IsStarted() && WaitForSingleObject(m_process.hProcess, 0) == WAIT_TIMEOUT;
}

bool Program::WaitForEnd(DWORD patience) const {
  return IsStarted() && WaitForSingleObject(m_process.hProcess, patience) == WAIT_OBJECT_0;
}

DWORD Program::ExitCode() const {
  DWORD code = STILL_ACTIVE;
  GetExitCodeProcess(m_process.hProcess, &code);
  return code;
}

std::vector<Window> Program::Windows() const {
  WindowSearch search = {Id(), {}};
  if (IsStarted()) EnumWindows(CollectWindow, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

Window Program::Find(const std::string& titleStart) const {
  for (const Window& window : Windows()) {
    if (window.Text().starts_with(titleStart)) return window;
  }
  return Window();
}

Window Program::WaitFor(const std::string& titleStart, DWORD patience) const {
  Window window;
  WaitUntil(
      [&] {
        window = Find(titleStart);
        return static_cast<bool>(window) || !IsRunning();
      },
      patience);
  return window;
}
