// What nobody waits for any more, or could not succeed, is not begun here: it would only take its time and
// add to the tools' log. After an abort no tool is run, nor is one whose input is not there. Portable, the
// thread that runs the job.
#ifndef MOSAICON_BATCH_CAREFUL_RUNNER_H_
#define MOSAICON_BATCH_CAREFUL_RUNNER_H_

#include "files/file_system.h"
#include "job/job_host.h"
#include "job/tool_runner.h"

class CarefulRunner : public ToolRunner {
 public:
  // All three must outlive this runner; runner runs the tools.
  CarefulRunner(ToolRunner& runner, const JobHost& host, FileSystem& files)
      : m_runner(runner), m_host(host), m_files(files) {}

  ToolOutcome Run(const ToolRun& run) override {
    return m_host.IsAborted() || !m_files.Exists(run.input) ? ToolOutcome() : m_runner.Run(run);
  }

 private:
  ToolRunner& m_runner;
  const JobHost& m_host;
  FileSystem& m_files;
};

#endif  // MOSAICON_BATCH_CAREFUL_RUNNER_H_
