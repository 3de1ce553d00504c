// Makes a folder on a server what a folder of this computer is: looks at both, sends what is missing or
// another one, looks whether all of it arrived, and only then puts it in the place of what was there. A
// publication that is broken off, in whatever way, is taken up by the next one.
//
// Run belongs to one thread; Stop and Progress may be called by any.
#ifndef MOSAICON_MIRROR_PUBLICATION_H_
#define MOSAICON_MIRROR_PUBLICATION_H_

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "mirror/manifest.h"
#include "mirror/publish_plan.h"
#include "mirror/remote_jobs.h"
#include "mirror/remote_survey.h"

namespace mirror {

struct PublicationOptions {
  int connections = 4;
  bool deleteExtras = false;  // what is only on the server
  bool dryRun = false;        // look, and change nothing
  Patience patience;
};

enum class Phase { kLooking, kSending, kChecking, kPlacing, kDeleting, kDone };

struct PublicationProgress {
  Phase phase = Phase::kLooking;
  std::size_t files = 0;  // sent, of
  std::size_t filesToSend = 0;
  std::uint64_t bytes = 0;  // that went out, of
  std::uint64_t bytesToSend = 0;
  std::size_t failures = 0;
  int connections = 0;
  std::string trouble;  // why nothing happens just now; empty otherwise
};

enum class PublicationResult {
  kPublished,   // the folder on the server is what it should be
  kIncomplete,  // see problems; what was there before is still in its place
  kFailed,      // see reason; the same
  kStopped,
  kPlanned,  // a dry run
};

struct PublicationReport {
  PublicationResult result = PublicationResult::kFailed;
  std::string reason;  // kFailed: a sentence
  PublishPlan plan;    // what was to be done
  std::size_t filesSent = 0;
  std::uint64_t bytesSent = 0;
  std::size_t filesDeleted = 0;
  std::vector<std::string> problems;  // each file that failed, with the reason
  std::vector<std::string> warnings;  // what went wrong beside the map itself
};

class Publication {
 public:
  // All must outlive it.
  Publication(RemoteStore& store, Manifest& manifest, Clock& clock, const PublicationOptions& options);

  PublicationReport Run(const std::filesystem::path& folder);

  // Run returns within two seconds.
  void Stop() { m_stop = true; }
  PublicationProgress Progress() const;

 private:
  bool Went(Ending ending, const std::string& reason);
  bool Survey(const LocalTree& local);
  bool MakeFolders();
  void LookForFolder(const std::string& folder, const Outcome& refused);
  bool Send();
  bool SendAll(const std::vector<PlannedFile*>& files);
  void TakeSent(PlannedFile& planned, const Outcome& outcome);
  bool Check(std::vector<PlannedFile*>& wrong);
  bool Place();
  void TakePlaced(const PlannedFile& planned, const Outcome& outcome);
  void SendInPlace(const PlannedFile& planned, const Outcome& refused);
  bool CheckInPlace();
  void NotePlaced(const std::string& path);
  bool DeleteFiles(const std::vector<std::string>& paths);
  bool DeleteFolders();
  void ForgetOldFiles(const LocalTree& local);
  void Fail(const std::string& path, const std::string& why);
  void SetPhase(Phase phase);
  void TellProgress();

  RemoteStore& m_store;
  Manifest& m_manifest;
  const PublicationOptions m_options;
  std::atomic<bool> m_stop = false;
  RemoteJobs m_jobs;
  RemoteSurvey m_survey;
  PublicationReport m_report;
  std::vector<const PlannedFile*> m_sentInPlace;
  std::size_t m_failuresInARow = 0;
  bool m_isLastRound = false;
  mutable std::mutex m_mutex;
  PublicationProgress m_progress;  // guarded
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_PUBLICATION_H_
