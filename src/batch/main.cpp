// mosaicon-batch: the jobs of Mosaicon without its window, for automation and for machines without a
// screen.

#include <windows.h>

#include <exception>
#include <iostream>

#include "batch/arguments.h"
#include "batch/careful_runner.h"
#include "batch/console_host.h"
#include "batch/inputs.h"
#include "batch/publish_arguments.h"
#include "batch/publish_windows.h"
#include "batch/report_lines.h"
#include "files/system_files.h"
#include "handles/dll_folders.h"
#include "job/batch_driver.h"
#include "job/tiler_log_file.h"
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

JobSettings MakeSettings(const BatchArguments& arguments, const std::vector<CTifData>& orthophotos) {
  JobSettings settings;
  if (!orthophotos.empty()) settings.inputPath = orthophotos.front().m_strFileName;
  settings.webOutput = arguments.url.has_value();
  settings.targetUrl = arguments.url.value_or("");
  settings.googleApiKey = arguments.googleKey;
  settings.transparency = arguments.transparency;
  settings.resampling = arguments.resampling;
  settings.tiles = arguments.tiles;
  settings.mapTitle = arguments.title;
  // A short name is no root here.
  settings.targetFolder = SystemFiles().FullPath(arguments.target);
  return settings;
}

// Tells what failed and returns how many maps are complete.
size_t TellResults(const std::vector<MapOutcome>& maps, TilerLogFile& log) {
  size_t complete = 0;
  for (const MapOutcome& map : maps) {
    if (map.state == MapState::kComplete) {
      ++complete;
    } else {
      std::cerr << "mosaicon-batch: FAILED " << map.orthophoto << ": "
                << (map.state == MapState::kFailed ? map.problem : "skipped") << std::endl;
    }
  }
  if (complete == maps.size()) return complete;
  const std::string details = log.Keep();
  if (!details.empty()) std::cerr << "mosaicon-batch: details are in " << details << std::endl;
  return complete;
}

// Standard output is in text mode and makes its own line ends.
void PrintReport(const JobReport& report) {
  std::cout << WithoutFalseSuccess(report.log, report.maps) << "Total work time: " << report.elapsed
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

  WindowsEnvironment environment;
  environment.Set("MOSAICON_TILER_RESAMPLING", ResamplingModes()[static_cast<size_t>(arguments.resampling)]);
  TilerLogFile log(files, environment, "mosaicon-batch", GetCurrentProcessId());
  WindowsToolRunner tools(host.ProgressWindow(), log.Path());
  CarefulRunner runner(tools, host, files);
  RealFinishingSteps steps;
  BatchDriver driver(host, runner, files, steps, environment, programPath);
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
  if (!arguments.quiet) PrintReport(host.Report());
  if (host.WasInterrupted()) return kAborted;
  const size_t complete = TellResults(host.Report().maps, log);
  if (!arguments.quiet) PrintFolders(driver.OutputFolders(), files);
  return complete == inputs.orthophotos.size() && inputs.refused == 0 ? kAllDone : kSomeFailed;
}

int Run(const std::vector<std::string>& words) {
  if (IsAboutPublishing(words)) return PublishFromCommandLine(words);
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
  LoadDllsFromOwnAndSystemFolderOnly();
  try {
    return Run(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::exception& error) {
    std::cerr << "mosaicon-batch: " << error.what() << std::endl;
    return kSomeFailed;
  }
}
