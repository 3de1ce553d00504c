// mosaicon-batch: the jobs of Mosaicon without its window, for automation and for machines without a
// screen.

#include <windows.h>

#include <cstdio>
#include <exception>
#include <iostream>

#include "batch/arguments.h"
#include "batch/console_host.h"
#include "batch/inputs.h"
#include "batch/job_audit.h"
#include "batch/report_lines.h"
#include "files/system_files.h"
#include "job/batch_driver.h"
#include "job/windows_gdal.h"
#include "job/windows_process.h"
#include "job/windows_tool_runner.h"
#include "kvtools/kvtools.h"
#include "version.h"

namespace {

enum ExitCode {
  kAllDone = 0,
  kSomeFailed = 1,
  kWrongArguments = 2,
  kToolsOrTargetMissing = 3,
  kAborted = 130
};

// Process ids come again, also after a log that was kept.
std::string TimeStamp() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  char text[32];
  std::snprintf(text, sizeof text, "%04u%02u%02u-%02u%02u%02u", now.wYear, now.wMonth, now.wDay, now.wHour,
                now.wMinute, now.wSecond);
  return text;
}

// The tiling script's log of this process: told to the script by the environment, removed at the end
// unless something failed that it explains.
class TilerLogFile {
 public:
  TilerLogFile() {
    WindowsEnvironment environment;
    const std::string base = environment.Get("LOCALAPPDATA").value_or(environment.Get("TEMP").value_or("."));
    SystemFiles files;
    files.CreateFolder(base + "\\Mosaicon");
    files.CreateFolder(base + "\\Mosaicon\\Logs");
    m_strPath = base + "\\Mosaicon\\Logs\\mosaicon-batch-" + TimeStamp() + "-" +
                std::to_string(GetCurrentProcessId()) + ".log";
    environment.Set("MOSAICON_TILER_LOG", m_strPath);
  }
  ~TilerLogFile() {
    if (!m_bKeep) DeleteFileA(m_strPath.c_str());
  }
  TilerLogFile(const TilerLogFile&) = delete;
  TilerLogFile& operator=(const TilerLogFile&) = delete;

  const std::string& Path() const { return m_strPath; }
  void Keep() { m_bKeep = true; }
  bool Exists() const { return SystemFiles().Exists(m_strPath); }

 private:
  std::string m_strPath;
  bool m_bKeep = false;
};

JobSettings MakeSettings(const BatchArguments& arguments, const std::vector<CTifData>& orthophotos) {
  JobSettings settings;
  if (!orthophotos.empty()) settings.inputPath = orthophotos.front().m_strFileName;
  settings.webOutput = arguments.url.has_value();
  settings.targetUrl = arguments.url.value_or("");
  settings.googleApiKey = arguments.googleKey;
  settings.transparency = arguments.transparency;
  settings.resampling = arguments.resampling;
  settings.mapTitle = arguments.title;
  // A short name is no root here.
  settings.targetFolder = SystemFiles().FullPath(arguments.target);
  return settings;
}

// Tells what failed and returns how many orthophotos are complete.
size_t TellResults(const std::vector<CTifData>& orthophotos, const JobAudit& audit, TilerLogFile& log) {
  size_t complete = 0;
  for (const CTifData& data : orthophotos) {
    const auto found = audit.Results().find(data.m_strFileName);
    if (found != audit.Results().end() && found->second.empty()) {
      ++complete;
    } else {
      std::cerr << "mosaicon-batch: FAILED " << data.m_strFileName << ": "
                << (found != audit.Results().end() ? found->second : "skipped") << std::endl;
    }
  }
  if (complete < orthophotos.size() && log.Exists()) {
    log.Keep();
    std::cerr << "mosaicon-batch: details are in " << log.Path() << std::endl;
  }
  return complete;
}

// Standard output is in text mode and makes its own line ends.
void PrintReport(const JobReport& report, const JobAudit& audit) {
  std::cout << WithoutFalseSuccess(report.log, audit.Results()) << "Total work time: " << report.elapsed
            << std::endl;
}

// The folders that hold a result. One that no tool has made is left out.
void PrintFolders(const std::vector<std::string>& folders, FileSystem& files) {
  for (const std::string& folder : folders) {
    if (files.Exists(folder)) std::cout << "Result: " << folder << std::endl;
  }
}

int RunJob(const BatchArguments& arguments) {
  const std::string programPath = GetProgramPath();
  SetUpGdal(programPath);
  ConsoleHost host(arguments.overwrite, arguments.quiet);
  SystemFiles files;
  const BatchInputs inputs = GatherInputs(arguments.inputs, files, host);
  if (host.WasInterrupted()) return kAborted;
  if (inputs.orthophotos.empty()) {
    std::cerr << "mosaicon-batch: there is no orthophoto to work on" << std::endl;
    return kSomeFailed;
  }

  TilerLogFile log;
  WindowsToolRunner runner(host.ProgressWindow());
  JobAudit audit(runner, host, log.Path());
  WindowsEnvironment environment;
  BatchDriver driver(host, audit, audit, audit, environment, programPath);
  switch (driver.StartJob(MakeSettings(arguments, inputs.orthophotos), inputs.orthophotos)) {
    case JobResult::kBadSettings:
      return kWrongArguments;
    case JobResult::kToolsMissing:
    case JobResult::kTargetMissing:
      return kToolsOrTargetMissing;
    case JobResult::kReported:
    case JobResult::kClosed:
      break;
  }
  if (!arguments.quiet) PrintReport(host.Report(), audit);
  if (host.WasInterrupted()) return kAborted;
  const size_t complete = TellResults(inputs.orthophotos, audit, log);
  if (!arguments.quiet) PrintFolders(driver.OutputFolders(), files);
  return complete == inputs.orthophotos.size() && inputs.refused == 0 ? kAllDone : kSomeFailed;
}

int Run(const std::vector<std::string>& words) {
  BatchArguments arguments;
  const std::string problem = ParseBatchArguments(words, arguments);
  if (!problem.empty()) {
    std::cerr << "mosaicon-batch: " << problem << "\nTry mosaicon-batch --help" << std::endl;
    return kWrongArguments;
  }
  if (arguments.help) {
    std::cout << BatchHelp();
    return kAllDone;
  }
  if (arguments.version) {
    std::cout << "mosaicon-batch " MOSAICON_VERSION << std::endl;
    return kAllDone;
  }
  // The window's settings are the user's own.
  KVT_SetProfileProduct("Mosaicon Batch");
  return RunJob(arguments);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::exception& error) {
    std::cerr << "mosaicon-batch: " << error.what() << std::endl;
    return kSomeFailed;
  }
}
