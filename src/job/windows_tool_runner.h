// Runs the tools of a job as child processes, each on a work queue made for that one run, and keeps
// the windows of the calling thread alive meanwhile. Win32, user-interface thread.
#ifndef MOSAICON_JOB_WINDOWS_TOOL_RUNNER_H_
#define MOSAICON_JOB_WINDOWS_TOOL_RUNNER_H_

#include "job/tool_runner.h"
#include "mfc/wnd.h"

class WindowsToolRunner : public ToolRunner {
 public:
  // progress shows the work of the tiling script; it must outlive the runner and may be null.
  explicit WindowsToolRunner(CWnd* progress) : m_pProgress(progress) {}

  void RunTranslator(const std::string& toolPath, const std::string& commandLine) override;
  void RunWarper(const std::string& toolPath, const std::string& commandLine) override;
  void RunTiler(const std::string& toolPath, const std::string& commandLine) override;

 private:
  CWnd* m_pProgress;
};

// Ends and deletes the queue of the run in progress, if there still is one.
void DestroyWorkQueue();

#endif  // MOSAICON_JOB_WINDOWS_TOOL_RUNNER_H_
