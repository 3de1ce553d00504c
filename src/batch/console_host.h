// The batch program's side of a job: what the window shows, as lines on the console. Win32, main
// thread; only the handler of Ctrl+C comes from another one.
#ifndef MOSAICON_BATCH_CONSOLE_HOST_H_
#define MOSAICON_BATCH_CONSOLE_HOST_H_

#include <atomic>
#include <chrono>
#include <optional>
#include <string>

#include "job/job_host.h"
#include "mfc/wnd.h"

class ConsoleHost : public JobHost {
 public:
  // overwrite answers the question about folders that are not empty; without it a person at a
  // terminal is asked, and the answer is no elsewhere.
  ConsoleHost(std::optional<bool> overwrite, bool quiet);
  ~ConsoleHost() override;
  ConsoleHost(const ConsoleHost&) = delete;
  ConsoleHost& operator=(const ConsoleHost&) = delete;

  // A window without looks that takes PBM_SETPOS from the tool runner.
  CWnd* ProgressWindow() { return &m_window; }
  // What the job reported, for whoever prints it.
  const JobReport& Report() const { return m_report; }
  // True once the user has asked for an end, by Ctrl+C or by Cancel; stays set when a job clears its
  // abort flag.
  bool WasInterrupted() const;

  void ShowMessage(MessageIcon icon, const std::string& text) override;
  void WriteBackTargetUrl(const std::string& url) override;
  void WriteBackMapTitle(const std::string& title) override;
  void WriteBackTargetFolder(const std::string& folder) override;
  Answer AskYesNoCancel(const std::string& text) override;
  void SetBusy(bool busy) override;
  void SetProgressLabel(const std::string& text) override;
  void SetProgressRange(int lower, int upper) override;
  void SetProgressPosition(int percent) override;
  void NavigatePreview(const std::string& page) override;
  void PumpMessages() override;
  void ShowReport(const JobReport& report) override;
  bool IsAborted() const override;
  void SetAborted(bool aborted) override;
  bool IsClosed() const override { return false; }

 private:
  static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
  static BOOL WINAPI OnConsoleControl(DWORD event) noexcept;
  void ClearProgressLine();

  const std::optional<bool> m_overwrite;
  const bool m_bQuiet;
  const bool m_bShowProgress;  // standard error is a terminal
  CWnd m_window;
  std::atomic<int32_t> m_bAbort{0};
  bool m_bCancelled = false;
  JobReport m_report;
  std::string m_strLabel;
  size_t m_nLineLength = 0;  // of the progress line on the screen
  std::chrono::steady_clock::time_point m_start;
};

#endif  // MOSAICON_BATCH_CONSOLE_HOST_H_
