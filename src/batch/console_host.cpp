#include "batch/console_host.h"

#include <commctrl.h>

#include <iostream>

#include "job/tool_items.h"
#include "kvtools/kvtools.h"
#include "progress/time_text.h"

namespace {

constexpr char kWindowClass[] = "MosaiconBatchProgress";
constexpr UINT kInterruptMessage = WM_APP;

// Set by the main thread, read by the thread on which the system reports Ctrl+C.
std::atomic<HWND> g_hInterruptWindow{nullptr};
// Set by that thread, at once: the main thread may be busy and not dispatch the message for a while.
std::atomic<bool> g_bInterrupted{false};

// The null device is a character device too, but no console.
bool IsTerminal(DWORD standardHandle) {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(standardHandle), &mode) != FALSE;
}

}  // namespace

ConsoleHost::ConsoleHost(std::optional<bool> overwrite, bool quiet)
    : m_overwrite(overwrite), m_bQuiet(quiet), m_bShowProgress(!quiet && IsTerminal(STD_ERROR_HANDLE)) {
  WNDCLASSEXA windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = WindowProcedure;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.lpszClassName = kWindowClass;
  RegisterClassExA(&windowClass);
  m_window.Attach(CreateWindowExA(0, kWindowClass, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                  windowClass.hInstance, nullptr));
  SetWindowLongPtrA(m_window.GetSafeHwnd(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  g_hInterruptWindow = m_window.GetSafeHwnd();
  SetConsoleCtrlHandler(OnConsoleControl, TRUE);
}

ConsoleHost::~ConsoleHost() {
  SetConsoleCtrlHandler(OnConsoleControl, FALSE);
  g_hInterruptWindow = nullptr;
  DestroyWindow(m_window.Detach());
  UnregisterClassA(kWindowClass, GetModuleHandleA(nullptr));
}

LRESULT CALLBACK ConsoleHost::WindowProcedure(HWND window, UINT message, WPARAM wParam,
                                              LPARAM lParam) noexcept {
  auto* host = reinterpret_cast<ConsoleHost*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  if (host != nullptr && message == PBM_SETPOS) {
    host->SetProgressPosition(static_cast<int>(wParam));
    return 0;
  }
  if (host != nullptr && message == kInterruptMessage) {
    // What the Abort button does, for whichever tool is running.
    AbortItem(g_pTilesJob);
    AbortItem(g_pTranslateJob);
    AbortItem(g_pWarpJob);
    return 0;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

BOOL WINAPI ConsoleHost::OnConsoleControl(DWORD /*event*/) noexcept {
  g_bInterrupted = true;
  if (HWND window = g_hInterruptWindow) PostMessageA(window, kInterruptMessage, 0, 0);
  return TRUE;
}

bool ConsoleHost::WasInterrupted() const {
  return g_bInterrupted || m_bCancelled;
}

bool ConsoleHost::IsAborted() const {
  return m_bAbort != 0 || g_bInterrupted;
}

void ConsoleHost::ShowMessage(MessageIcon /*icon*/, const std::string& text) {
  ClearProgressLine();
  std::cerr << "mosaicon-batch: " << text << std::endl;
}

void ConsoleHost::WriteBackTargetUrl(const std::string& url) {
  if (!m_bQuiet) std::cout << "Target URL: " << url << std::endl;
}

void ConsoleHost::WriteBackMapTitle(const std::string& /*title*/) {}

void ConsoleHost::WriteBackTargetFolder(const std::string& folder) {
  if (!m_bQuiet) std::cout << "Target folder: " << folder << std::endl;
}

Answer ConsoleHost::AskYesNoCancel(const std::string& text) {
  if (m_overwrite) return *m_overwrite ? Answer::kYes : Answer::kNo;
  ClearProgressLine();
  if (!IsTerminal(STD_INPUT_HANDLE)) {
    std::cerr << "mosaicon-batch: the target folder is not empty; --overwrite yes would overwrite it\n";
    return Answer::kNo;
  }
  for (;;) {
    std::cerr << text << " [yes/no/cancel] " << std::flush;
    std::string line;
    if (!std::getline(std::cin, line)) return Answer::kCancel;
    if (line == "y" || line == "yes") return Answer::kYes;
    if (line == "n" || line == "no") return Answer::kNo;
    if (line == "c" || line == "cancel") return Answer::kCancel;
  }
}

void ConsoleHost::SetBusy(bool /*busy*/) {}

void ConsoleHost::SetProgressLabel(const std::string& text) {
  m_strLabel = text;
  m_start = std::chrono::steady_clock::now();
  if (!text.empty() && !m_bQuiet && !m_bShowProgress) std::cout << text << std::endl;
}

void ConsoleHost::SetProgressRange(int /*lower*/, int /*upper*/) {}

void ConsoleHost::SetProgressPosition(int percent) {
  if (!m_bShowProgress || m_strLabel.empty()) return;
  std::string line = m_strLabel + " " + std::to_string(percent) + " %";
  const double fraction = percent / 100.0;
  if (fraction > kLeastFractionForEstimate) {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_start;
    line += "  " + FormatSecondsLeft(EstimateSecondsLeft(fraction, elapsed.count()));
  }
  const size_t length = line.size();
  if (length < m_nLineLength) line.append(m_nLineLength - length, ' ');
  m_nLineLength = length;
  std::cerr << '\r' << line << std::flush;
}

void ConsoleHost::ClearProgressLine() {
  if (m_nLineLength == 0) return;
  std::cerr << '\r' << std::string(m_nLineLength, ' ') << '\r' << std::flush;
  m_nLineLength = 0;
}

void ConsoleHost::NavigatePreview(const std::string& /*page*/) {}

void ConsoleHost::PumpMessages() {
  KVT_PumpMessages();
}

void ConsoleHost::ShowReport(const JobReport& report) {
  ClearProgressLine();
  m_report = report;
}

void ConsoleHost::SetAborted(bool aborted) {
  m_bAbort = aborted ? 1 : 0;
  if (aborted) m_bCancelled = true;
}
