// What a job works with in place of the host, the tools and the files that it was given. Any call to
// the host may close it, and a job that is deep in its work cannot look after each one: once the host
// is closed nothing passes here any more, and the job comes to its end without doing anything. No
// window that is gone is called, no tool is started and no file is touched behind the user's back.
//
// Portable, the thread that runs the job. The things guarded must outlive their guards.
#ifndef MOSAICON_JOB_GUARDED_HOST_H_
#define MOSAICON_JOB_GUARDED_HOST_H_

#include <set>

#include "files/file_system.h"
#include "job/finishing_steps.h"
#include "job/job_host.h"
#include "job/tif_data.h"
#include "job/tool_runner.h"

// Once closed it shows nothing, answers "Cancel" and says that the job is aborted.
class GuardedHost : public JobHost {
 public:
  explicit GuardedHost(JobHost& host) : m_host(host) {}

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
  bool IsClosed() const override { return m_host.IsClosed(); }

 private:
  JobHost& m_host;
};

// Once the host is closed it runs nothing, and knows nothing of a tool.
class GuardedRunner : public ToolRunner {
 public:
  GuardedRunner(ToolRunner& runner, const JobHost& host) : m_runner(runner), m_host(host) {}

  ToolOutcome Run(const ToolRun& run) override;

 private:
  ToolRunner& m_runner;
  const JobHost& m_host;
};

// Once the host is closed it finds nothing and every change fails. A change of a protected file fails
// at any time.
class GuardedFiles : public FileSystem {
 public:
  GuardedFiles(FileSystem& files, const JobHost& host) : m_files(files), m_host(host) {}

  // From now on these files, and only these, are protected, whatever path leads to them.
  void Protect(const std::vector<CTifData>& orthophotos);
  bool IsProtected(const std::string& path);

  // Removes what is not complete from an output folder. The one change that a closed host does not
  // prevent: it is closing that kills what was writing.
  void RemovePartial(const std::string& folder);

  std::string FullPath(const std::string& path) override { return m_files.FullPath(path); }
  std::string Identity(const std::string& path) override;
  std::optional<std::string> Read(const std::string& path, size_t maxBytes) override;
  bool Exists(const std::string& path) override;
  bool IsFolder(const std::string& path) override;
  std::optional<std::uint64_t> WriteTime(const std::string& path) override;
  bool Find(const std::string& pattern, std::vector<FoundFile>& found) override;
  bool CreateFolder(const std::string& path) override;
  bool Delete(const std::string& path) override;
  bool Rename(const std::string& source, const std::string& target) override;
  bool Copy(const std::string& source, const std::string& target) override;

  bool IsOpen() const { return !m_host.IsClosed(); }
  bool MayChange(const std::string& path) { return IsOpen() && !IsProtected(path); }

 private:
  FileSystem& m_files;
  const JobHost& m_host;
  // Identities and full paths: a file that is written anew meanwhile is no other one to its user.
  std::set<std::string> m_protected;
};

// Changes what the guarded files may change, and knows nothing once the host is closed.
class GuardedSteps : public FinishingSteps {
 public:
  GuardedSteps(FinishingSteps& steps, GuardedFiles& files) : m_steps(steps), m_files(files) {}

  bool RewriteLinks(const std::string& kml, const std::string& baseUrl,
                    const std::string& subFolder) override;
  bool MakePreview(const std::string& orthophoto, const std::string& picture, std::string& reason) override;
  bool IsPreview(const std::string& path) override;
  bool WriteText(const std::string& path, const std::string& text) override;

 private:
  FinishingSteps& m_steps;
  GuardedFiles& m_files;
};

#endif  // MOSAICON_JOB_GUARDED_HOST_H_
