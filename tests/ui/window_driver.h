// Works the windows of another process as a user would: starts a program, finds its windows and their
// controls, reads, types and clicks.
//
// Nothing here waits without a limit, and nothing sleeps in the hope that something has happened
// meanwhile: what is waited for is asked for again and again. What does not come about is told by a null
// Window or by false. Asking a null Window, or one that is gone or does not answer, yields nothing: an
// empty text, a control that is not enabled. Clicks and keys are posted, so that a question that they
// raise does not stop the caller. Texts are in the ANSI code page. Win32.
#ifndef MOSAICON_TESTS_UI_WINDOW_DRIVER_H_
#define MOSAICON_TESTS_UI_WINDOW_DRIVER_H_

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

inline constexpr DWORD kPatience = 180000;  // ms

// Whether condition came true within patience milliseconds.
bool WaitUntil(const std::function<bool()>& condition, DWORD patience = kPatience);

class Window {
 public:
  explicit Window(HWND handle = nullptr) : m_hWnd(handle) {}

  HWND Handle() const { return m_hWnd; }
  explicit operator bool() const { return m_hWnd != nullptr; }
  bool operator==(const Window&) const = default;

  // The control with this number in a dialog.
  Window Item(int id) const { return Window(GetDlgItem(m_hWnd, id)); }
  int Id() const { return GetDlgCtrlID(m_hWnd); }
  // In the order of the tab key.
  std::vector<Window> Children() const;

  std::string Text() const;
  std::string ClassName() const;
  DWORD Style() const { return static_cast<DWORD>(GetWindowLongPtrA(m_hWnd, GWL_STYLE)); }
  RECT Place() const;  // on the screen
  bool Exists() const { return IsWindow(m_hWnd) != FALSE; }
  bool IsEnabled() const { return m_hWnd != nullptr && IsWindowEnabled(m_hWnd); }
  // Shown by itself, whether or not something hides it.
  bool IsVisible() const { return (Style() & WS_VISIBLE) != 0; }
  bool IsChecked() const { return Send(BM_GETCHECK) == BST_CHECKED; }
  // The control of this dialog's thread that has the keyboard.
  Window Focus() const;

  void SetText(const std::string& text) const;
  void Click() const;
  // Clicks a check box that does not stand like this yet, and waits until it does.
  bool Check(bool checked) const;
  // Chooses an entry of a drop-down list as the user would, with the notification to its dialog.
  bool Choose(int index) const;
  // Gives the focus to a control, by way of its dialog.
  bool TakeFocus() const;
  void PressKey(WPARAM key) const;
  void Post(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
  // 0 when there is no answer in time.
  LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
  // Milliseconds that the window takes to answer; nothing when it is longer than limit.
  std::optional<double> AnswerTime(DWORD limit) const;

  bool WaitUntilGone(DWORD patience = kPatience) const;
  bool WaitUntilEnabled(DWORD patience = kPatience) const;

 private:
  HWND m_hWnd;
};

// A running program and its windows. Killed with the object when it still runs then.
class Program {
 public:
  // As the shell starts it: its path in quotes, then the arguments.
  explicit Program(const std::string& path, const std::string& arguments = "");
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Starts whatever commandLine says; with an inheritable handle as its standard output.
  static std::unique_ptr<Program> FromCommandLine(const std::string& commandLine, HANDLE output = nullptr);

  bool IsStarted() const { return m_process.hProcess != nullptr; }
  bool IsRunning() const;
  HANDLE Process() const { return m_process.hProcess; }
  DWORD Id() const { return m_process.dwProcessId; }
  bool WaitForEnd(DWORD patience = kPatience) const;
  DWORD ExitCode() const;

  // The visible top-level windows, topmost first.
  std::vector<Window> Windows() const;
  // The first of them whose title begins like this; the second function waits for it.
  Window Find(const std::string& titleStart) const;
  Window WaitFor(const std::string& titleStart, DWORD patience = kPatience) const;

 private:
  struct AsItIs {};
  Program(AsItIs, std::string commandLine, HANDLE output = nullptr);

  PROCESS_INFORMATION m_process = {};
};

#endif  // MOSAICON_TESTS_UI_WINDOW_DRIVER_H_
