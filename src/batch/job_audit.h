// Stands between the job driver and the real tools and files, and finds out what became of each
// orthophoto: the driver's own log calls every finished run OK, whatever the tools did.
//
// After an abort it runs no further tool, so that nothing is started behind the user's back. Win32,
// the thread that runs the job.
#ifndef MOSAICON_BATCH_JOB_AUDIT_H_
#define MOSAICON_BATCH_JOB_AUDIT_H_

#include <map>
#include <string>
#include <vector>

#include "files/system_files.h"
#include "job/finishing_steps.h"
#include "job/job_host.h"
#include "job/tool_runner.h"

class JobAudit : public ToolRunner, public SystemFiles, public RealFinishingSteps {
 public:
  // runner runs the real tools; host knows about an abort. tilerLog is the file that the tiling
  // script writes its results into.
  JobAudit(ToolRunner& runner, const JobHost& host, const std::string& tilerLog)
      : m_runner(runner), m_host(host), m_strTilerLog(tilerLog) {}

  void RunTranslator(const std::string& toolPath, const std::string& commandLine) override;
  void RunWarper(const std::string& toolPath, const std::string& commandLine) override;
  void RunTiler(const std::string& toolPath, const std::string& commandLine) override;

  bool Rename(const std::string& source, const std::string& target) override;
  bool Copy(const std::string& source, const std::string& target) override;
  bool RewriteLinks(const std::string& kml, const std::string& baseUrl,
                    const std::string& subFolder) override;
  bool MakePreview(const std::string& orthophoto, const std::string& picture) override;

  // What went wrong, by orthophoto; an empty text for one that is complete. Orthophotos that no tool
  // was run for are missing.
  const std::map<std::string, std::string>& Results() const { return m_results; }

 private:
  using Run = void (ToolRunner::*)(const std::string& toolPath, const std::string& commandLine);

  // Notes the first failure of the orthophoto in work.
  void Fail(const std::string& reason);
  bool HasFailed() const { return !m_results.at(m_strOrthophoto).empty(); }
  void RunChecked(Run run, const char* name, const std::string& toolPath, const std::string& commandLine);

  ToolRunner& m_runner;
  const JobHost& m_host;
  const std::string m_strTilerLog;
  std::string m_strOrthophoto;   // in work
  std::string m_strReprojected;  // the warped file of m_strOrthophoto
  std::map<std::string, std::string> m_results;
};

#endif  // MOSAICON_BATCH_JOB_AUDIT_H_
