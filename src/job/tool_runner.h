// Runs the external tools of a job, one at a time. Called from the thread that runs the job; a call returns
// when the tool has ended, by itself or because the user aborted it, and keeps the program alive meanwhile.
#ifndef MOSAICON_JOB_TOOL_RUNNER_H_
#define MOSAICON_JOB_TOOL_RUNNER_H_

#include "job/tool_run.h"

class ToolRunner {
 public:
  virtual ~ToolRunner() = default;
  // Tells what is known of the tool itself, and leaves the files that it should have made to the caller. The
  // progress of the tiler goes to the host's progress bar.
  virtual ToolOutcome Run(const ToolRun& run) = 0;
};

#endif  // MOSAICON_JOB_TOOL_RUNNER_H_
