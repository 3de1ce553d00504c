#include "job/batch_driver.h"

#include <utility>

#include "job/bounded_text.h"
#include "job/command_lines.h"
#include "job/intermediates.h"
#include "kvtools/flag_guard.h"
#include "kvtools/kvtools.h"

namespace {

constexpr size_t kCornerCount = 4;
constexpr char kRelativeUrl[] = "../";
constexpr char kTooLong[] = "the command line of a tool would be too long";

std::string LastComponent(const std::string& folder) {
  const size_t separator = folder.rfind('\\');
  return separator == std::string::npos ? folder : folder.substr(separator + 1);
}

size_t CountEntries(FileSystem& files, const std::string& folder) {
  return FindFiles(files, folder + "\\*.*").size();
}

}  // namespace

BatchDriver::BatchDriver(JobHost& host, ToolRunner& runner, FileSystem& files, FinishingSteps& steps,
                         ProcessEnvironment& environment, const std::string& programPath)
    : m_host(host),
      m_runner(runner, host),
      m_files(files, host),
      m_steps(steps, m_files),
      m_audit(m_runner, m_files, m_host),
      m_environment(environment),
      m_tools(MakeToolPaths(programPath)) {}

JobResult BatchDriver::StartJob(const JobSettings& settings, std::vector<CTifData> orthophotos) {
  // Every call to the host may dispatch a second Start.
  if (m_bJobRunning) return JobResult::kClosed;
  const FlagGuard running(m_bJobRunning);
  m_settings = settings;
  m_vOrthophotos = std::move(orthophotos);
  m_strLog.clear();
  m_bOverwriteConfirmed = false;
  m_vOutputFolders.clear();
  m_vMapNames.clear();
  m_vPages.clear();
  m_bPageFilesWritten = false;
  m_audit.StartJob(m_vOrthophotos);
  const JobResult result = RunJob();
  return m_host.IsClosed() ? JobResult::kClosed : result;
}

JobResult BatchDriver::RunJob() {
  if (!ValidateAndSaveSettings(m_settings, m_vOrthophotos.size(), m_files, m_host)) {
    return JobResult::kBadSettings;
  }
  if (!CheckTools(m_tools, m_files, m_host) || !SetToolEnvironment(m_tools, m_environment, m_host)) {
    return JobResult::kToolsMissing;
  }
  // The tiler makes the page that links to the documents before they have their names.
  m_environment.Set("MOSAICON_TILER_DOCUMENTS", m_settings.targetUrl.empty()
                                                    ? "googleearth_loc.kml"
                                                    : "googleearth_loc.kml|googleearth_web.kml");
  // Its command line has no place for this.
  m_environment.Set("MOSAICON_TILER_TILES", NameOf(m_settings.tiles));
  m_files.Protect(m_vOrthophotos);
  if (!Prepare()) return JobResult::kTargetMissing;
  ProcessAll();
  Report();
  return JobResult::kReported;
}

bool BatchDriver::Prepare() {
  m_host.SetAborted(false);
  m_host.SetBusy(true);
  KVT_StartTimer();
  m_host.SetProgressRange(0, 100);
  m_host.SetProgressPosition(0);
  if (m_files.CreateFolder(m_settings.targetFolder)) return true;
  m_host.ShowMessage(MessageIcon::kWarning, "Unable to create folder " + m_settings.targetFolder +
                                                " or parent folder doesn't exist");
  m_host.SetBusy(false);
  return false;
}

void BatchDriver::ProcessAll() {
  for (size_t i = 0; i < m_vOrthophotos.size(); ++i) {
    if (m_host.IsAborted() || ProcessOne(m_vOrthophotos[i], i, m_vOrthophotos.size()) == Next::kEndJob) {
      LeaveOutFrom(i);
      return;
    }
  }
}

// The job ends before this orthophoto. What an earlier job made of the rest is as it was.
void BatchDriver::LeaveOutFrom(size_t index) {
  const bool aborted = m_host.IsAborted();
  for (; index < m_vOrthophotos.size(); ++index) {
    m_audit.StartMap(index);
    if (CountEntries(m_files, OutputFolder(index)) > 0) {
      m_audit.Keep();
    } else {
      m_audit.LeaveOut(aborted ? "the job was aborted" : "the job ended at a folder that is not empty");
    }
  }
}

BatchDriver::Next BatchDriver::ProcessOne(const CTifData& data, size_t index, size_t count) {
  m_audit.StartMap(index);
  if (data.m_vCorners.size() != kCornerCount) {
    Log(data.m_strFileName + " skipped");
    m_audit.LeaveOut("its corners are not known");
    return Next::kContinue;
  }
  Output output;
  output.index = index;
  if (!NameOutput(index, count, output)) {
    Log(data.m_strFileName + ": unable to create target folder");
    m_audit.LeaveOut("the target folder could not be made");
    return Next::kContinue;
  }
  m_vOutputFolders.push_back(output.folder);
  if (CountEntries(m_files, output.folder) > 0 && !ConfirmOverwrite(data)) {
    return Next::kEndJob;
  }
  m_vMapNames.push_back(output.mapName);

  const TilerProgram tiler = FindTiler(m_tools, m_files);
  TilingRequest request{tiler.script,   m_settings.transparency, data.m_strSourceEPSG, output.mapName,
                        output.baseUrl, m_settings.googleApiKey, data.m_strFileName,   output.folder};
  if (!FormatTilingArguments(request)) {
    // Too long for a command line: nothing is run with half a text.
    Log(data.m_strFileName + " skipped");
    m_audit.LeaveOut(kTooLong);
    return Next::kContinue;
  }
  if (data.m_strTargetEPSG != data.m_strSourceEPSG &&
      !Reproject(data, request.inputPath, request.sourceEPSG)) {
    Log("unable to apply translation to " + data.m_strFileName);
    return Next::kContinue;
  }
  const auto arguments = FormatTilingArguments(request);
  if (!arguments) {
    Log(data.m_strFileName + " skipped");
    m_audit.LeaveOut(kTooLong);
    return Next::kContinue;
  }
  m_host.SetProgressLabel("Process " + std::to_string(index + 1) + "/" + std::to_string(count) + " - " +
                          output.mapName + " -");
  m_host.SetProgressPosition(0);
  m_audit.Run({Tool::kTiler, tiler.path, *arguments, data.m_strFileName, request.inputPath, output.folder,
               m_settings.tiles != tiler::TileFormat::kWebp});
  // A script that was killed left what it was writing, and an upload would publish it.
  if (m_host.IsAborted()) m_files.RemovePartial(output.folder);

  FinishMap(data, output);
  Log(data.m_strFileName + ": OK");
  return Next::kContinue;
}

std::string BatchDriver::OutputFolder(size_t index) const {
  if (m_vOrthophotos.size() == 1) return m_settings.targetFolder;
  return m_settings.targetFolder + "\\tile_" + std::to_string(index);
}

// Chooses where the result of one orthophoto goes; false when the target folder of several cannot be
// made. The folder of the tiles itself is made by the tiling script.
bool BatchDriver::NameOutput(size_t index, size_t count, Output& output) {
  output.folder = OutputFolder(index);
  output.baseUrl = kRelativeUrl;
  output.mapName = m_settings.mapTitle;
  if (count > 1) {
    if (!m_files.CreateFolder(m_settings.targetFolder)) return false;
    const std::string number = std::to_string(index);
    output.baseUrl = std::string("../") + kRelativeUrl + LastComponent(m_settings.targetFolder);
    output.webFolder = "/tile_" + number;
    if (!output.mapName.empty()) output.mapName += "_" + number;
  }
  output.normalised = KVT_OptimizePath(output.folder, 1);
  return true;
}

// Asks once per job; false when the job ends here.
bool BatchDriver::ConfirmOverwrite(const CTifData& data) {
  if (!m_bOverwriteConfirmed) {
    const Answer answer =
        m_host.AskYesNoCancel("Folders are not empty. All content will be overwritten.\nContinue?");
    if (answer == Answer::kCancel) {
      m_host.SetAborted(true);
      return false;
    }
    if (answer == Answer::kNo) {
      // One "No" stands for all that is left.
      Log("generation skipped: already created");
      return false;
    }
    m_bOverwriteConfirmed = true;
  }
  // Nothing is deleted: the tools overwrite what is there.
  Log(data.m_strFileName + ": previous process result deleted");
  return true;
}

// Georeferences the orthophoto anew by its corners and warps it into its UTM zone, both as virtual
// rasters beside it. On success the two outputs name what the tiling script gets.
bool BatchDriver::Reproject(const CTifData& data, std::string& inputPath, std::string& sourceEPSG) {
  const std::string translated = NameIntermediate(
      data.m_strFileName, nullptr, [&data](const std::string& xml) { return IsTranslationOf(data, xml); });
  const std::string warped = NameIntermediate(
      translated, "2", [&translated](const std::string& xml) { return IsWarpOf(translated, xml); });
  const auto translateArguments = FormatTranslateArguments(data, translated);
  const auto warpArguments = FormatWarpArguments(data.m_strTargetEPSG, translated, warped);
  if (!translateArguments || !warpArguments) {
    m_audit.LeaveOut(kTooLong);
    return false;
  }

  // What an earlier job left would pass for the result of this one.
  if (!Remove(translated)) return false;
  m_audit.Run({Tool::kTranslator, m_tools.translator, *translateArguments, data.m_strFileName,
               data.m_strFileName, translated});
  if (!m_files.Exists(translated)) return false;
  // The warper does not write over an existing file.
  if (!Remove(warped)) return false;
  m_audit.Run({Tool::kWarper, m_tools.warper, *warpArguments, data.m_strFileName, translated, warped});
  inputPath = warped;
  sourceEPSG = data.m_strTargetEPSG;
  return true;
}

// A name for the virtual raster that is made of a file, beside it: the first one that is free, or taken
// by what isOurs knows as the work of an earlier job, and never one of the orthophotos.
std::string BatchDriver::NameIntermediate(const std::string& path, const char* suffix,
                                          const std::function<bool(const std::string& xml)>& isOurs) {
  std::string name = KVT_TranslatePath(path, nullptr, "vrt", suffix);
  while (m_files.Exists(name)) {
    const auto xml = m_files.Read(name, kMaxIntermediate);
    if (xml && isOurs(*xml) && !m_files.IsProtected(name)) break;
    name = KVT_TranslatePath(name, nullptr, nullptr, "2");
  }
  return name;
}

// Makes room for what a tool writes.
bool BatchDriver::Remove(const std::string& path) {
  m_files.Delete(path);
  if (!m_files.Exists(path)) return true;
  m_audit.LeaveOut("the older " + path + " cannot be deleted");
  return false;
}

void BatchDriver::Report() {
  JobReport report;
  report.elapsed = KVT_GetElapsedTime();
  report.log = m_host.IsAborted() ? "Aborted by user" : m_strLog;
  report.copyHint = "Copy '" + m_settings.targetFolder + "' folder and its content";
  report.webHint = std::string("To '") + kRelativeUrl + "' web space";
  report.maps = m_audit.Maps();
  m_host.SetBusy(false);
  m_host.SetProgressLabel("");
  m_host.SetProgressPosition(0);
  m_host.ShowReport(report);
  m_host.SetAborted(false);
}

void BatchDriver::Log(const std::string& text) {
  m_strLog += "- " + text + "\r\n";
}
