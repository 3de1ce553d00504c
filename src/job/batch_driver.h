// Runs a whole job: checks and saves the settings, finds the tools, then makes one tile pyramid for
// each orthophoto, one after the other, and reports. Knows no window: everything that a person sees,
// every tool and every file goes through the interfaces given. One thread, the host's.
#ifndef MOSAICON_JOB_BATCH_DRIVER_H_
#define MOSAICON_JOB_BATCH_DRIVER_H_

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "files/file_system.h"
#include "job/finishing_steps.h"
#include "job/guarded_host.h"
#include "job/job_host.h"
#include "job/job_settings.h"
#include "job/map_audit.h"
#include "job/process_environment.h"
#include "job/tif_data.h"
#include "job/tool_paths.h"
#include "job/tool_runner.h"
#include "tiler/index_page.h"

// How far a job got.
enum class JobResult {
  kBadSettings,    // the user was told what is wrong
  kToolsMissing,   // or the environment could not be set; the user was told
  kTargetMissing,  // the target folder could not be made; the user was told
  kReported,       // the orthophotos were processed, or the user aborted
  kClosed,         // the host was closed meanwhile, or a job is running already; nothing more was done
};

class BatchDriver {
 public:
  // The interfaces must outlive the driver. programPath is the full path of the running executable.
  BatchDriver(JobHost& host, ToolRunner& runner, FileSystem& files, FinishingSteps& steps,
              ProcessEnvironment& environment, const std::string& programPath);

  // Takes a list of its own, because the host may rebuild its list while the job runs.
  // Does the job and returns when its report was closed, or earlier as the result says. A call while
  // a job is running does nothing.
  JobResult StartJob(const JobSettings& settings, std::vector<CTifData> orthophotos);

  // Of the last job: one entry for each orthophoto that got as far as that.
  const std::vector<std::string>& OutputFolders() const { return m_vOutputFolders; }
  const std::vector<std::string>& MapNames() const { return m_vMapNames; }

 private:
  // What happened to one orthophoto: whether the loop goes on.
  enum class Next { kContinue, kEndJob };

  // The names that belong to one orthophoto.
  struct Output {
    size_t index = 0;
    std::string folder;      // where its tiles go
    std::string baseUrl;     // as the tiling script gets it
    std::string webFolder;   // "" or "/tile_<i>", between the target URL and a link
    std::string mapName;     // may be empty
    std::string normalised;  // folder, with a final backslash
  };

  JobResult RunJob();
  bool Prepare();
  void ProcessAll();
  Next ProcessOne(const CTifData& data, size_t index, size_t count);
  void LeaveOutFrom(size_t index);
  std::string OutputFolder(size_t index) const;
  bool NameOutput(size_t index, size_t count, Output& output);
  bool ConfirmOverwrite(const CTifData& data);
  bool Reproject(const CTifData& data, std::string& inputPath, std::string& sourceEPSG);
  std::string NameIntermediate(const std::string& path, const char* suffix,
                               const std::function<bool(const std::string& xml)>& isOurs);
  bool Remove(const std::string& path);
  void Report();

  // Adds "- <text>" as a line.
  void Log(const std::string& text);

  // With the files of a map, when the script has ended: batch_driver_finish.cpp
  void FinishMap(const CTifData& data, const Output& output);
  void FinishViewers(const Output& output);
  bool IsWithoutKml(const Output& output);
  void LeaveOutKml(const CTifData& data, const Output& output);
  void FinishKml(const Output& output);
  void RenameDocument(const std::string& document, const std::string& local);
  void MakePicture(const CTifData& data, const Output& output);
  std::string NamePicture(const Output& output);
  // With what several maps share: batch_driver_index.cpp
  std::optional<tiler::MapDescription> ReadPage(size_t index);
  void MakeIndex(size_t finished);
  bool WriteIndex(const std::vector<tiler::MapDescription>& maps);
  bool WritePageFiles();

  // The only way to the world: every call of them may come too late.
  GuardedHost m_host;
  GuardedRunner m_runner;
  GuardedFiles m_files;
  GuardedSteps m_steps;
  MapAudit m_audit;
  ProcessEnvironment& m_environment;
  const ToolPaths m_tools;

  // Of the job in progress.
  bool m_bJobRunning = false;
  JobSettings m_settings;
  std::vector<CTifData> m_vOrthophotos;
  std::string m_strLog;
  bool m_bOverwriteConfirmed = false;
  std::vector<std::string> m_vOutputFolders;
  std::vector<std::string> m_vMapNames;
  std::vector<std::optional<tiler::MapDescription>> m_vPages;  // of all orthophotos, once one is finished
  bool m_bPageFilesWritten = false;
};

#endif  // MOSAICON_JOB_BATCH_DRIVER_H_
