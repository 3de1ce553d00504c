// Runs the tools of a job as child processes, each on a work queue made for that one run, and keeps
// the windows of the calling thread alive meanwhile. Win32, user-interface thread.
#ifndef MOSAICON_JOB_WINDOWS_TOOL_RUNNER_H_
#define MOSAICON_JOB_WINDOWS_TOOL_RUNNER_H_

#include <string>
#include <utility>

#include "job/tool_items.h"
#include "job/tool_runner.h"
#include "mfc/wnd.h"

class WindowsToolRunner : public ToolRunner {
 public:
  // progress shows the work of the tiling script; it must outlive the runner and may be null. tilerLog is the
  // file that the script was told to write its log into. How often a tool is looked after, see ToolWatch.
  explicit WindowsToolRunner(CWnd* progress, std::string tilerLog = "",
                             DWORD turnMilliseconds = ToolWatch().turnMilliseconds)
      : m_pProgress(progress), m_strTilerLog(std::move(tilerLog)), m_nTurnMilliseconds(turnMilliseconds) {}

  ToolOutcome Run(const ToolRun& run) override;

 private:
  CWnd* m_pProgress;
  const std::string m_strTilerLog;
  const DWORD m_nTurnMilliseconds;
};

// Ends and deletes the queue of the run in progress, if there still is one.
void DestroyWorkQueue();

#endif  // MOSAICON_JOB_WINDOWS_TOOL_RUNNER_H_
