// Runs the external tools of a job, one at a time. Called from the thread that runs the job; every
// call returns when the tool has ended, by itself or because the user aborted it, and keeps the
// program alive meanwhile. Whether the tool succeeded is not told: its output files are.
#ifndef MOSAICON_JOB_TOOL_RUNNER_H_
#define MOSAICON_JOB_TOOL_RUNNER_H_

#include <string>

class ToolRunner {
 public:
  virtual ~ToolRunner() = default;
  // Command lines begin with a blank and hold the arguments only.
  virtual void RunTranslator(const std::string& toolPath, const std::string& commandLine) = 0;
  virtual void RunWarper(const std::string& toolPath, const std::string& commandLine) = 0;
  // The interpreter runs the tiling script; its progress goes to the host's progress bar.
  virtual void RunTiler(const std::string& toolPath, const std::string& commandLine) = 0;
};

#endif  // MOSAICON_JOB_TOOL_RUNNER_H_
