#include "mirror/publication.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

#include "mirror/checksum.h"
#include "mirror/remote_path.h"
#include "mirror/staged_name.h"

namespace mirror {

namespace {

using Kind = RemoteJob::Kind;

constexpr int kRounds = 2;             // of sending what did not arrive whole
constexpr size_t kEnoughFailures = 5;  // one after the other

// A file that was changed a moment ago may be changed again without another time: clocks of disks are coarse.
constexpr std::chrono::seconds kCoarse{3};

std::string RemoteNameOf(const PlannedFile& planned) {
  return planned.isStaged ? StagedName(planned.file.path) : planned.file.path;
}

// Such names many servers do not list.
bool IsListed(const std::string& path) {
  return !path.substr(path.rfind('/') + 1).starts_with('.');
}

std::string SentenceOf(const std::string& path, const std::string& why) {
  return path + ": " + why;
}

// As it is to be remembered.
FileState SettledState(const LocalFile& file) {
  FileState state = file.state;
  const auto now = std::filesystem::file_time_type::clock::now().time_since_epoch();
  const std::filesystem::file_time_type::duration time(file.state.time);
  if (time > now - kCoarse) state.time = 0;
  return state;
}

}  // namespace

Publication::Publication(RemoteStore& store, Manifest& manifest, Clock& clock,
                         const PublicationOptions& options)
    : m_store(store),
      m_manifest(manifest),
      m_options(options),
      m_jobs(store, clock, m_stop, options.connections, options.patience),
      m_survey(m_jobs) {
  m_store.SetConnections(options.connections);
  m_jobs.SetOnTurn([this] { TellProgress(); });
}

PublicationReport Publication::Run(const std::filesystem::path& folder) {
  const LocalTree local = ReadLocalTree(folder);
  if (!Survey(local)) return std::move(m_report);
  if (m_options.dryRun) {
    m_report.problems = m_report.plan.problems;
    m_report.result = PublicationResult::kPlanned;
    return std::move(m_report);
  }
  if (!m_report.plan.problems.empty()) {
    m_report.problems = m_report.plan.problems;
    m_report.result = PublicationResult::kIncomplete;
    return std::move(m_report);
  }
  if (!MakeFolders() || !Send() || !Place()) return std::move(m_report);
  ForgetOldFiles(local);
  SetPhase(Phase::kDeleting);
  if (!DeleteFiles(m_report.plan.leftovers)) return std::move(m_report);
  if (m_options.deleteExtras && !(DeleteFiles(m_report.plan.extraFiles) && DeleteFolders())) {
    return std::move(m_report);
  }
  if (!m_manifest.Failure().empty()) {
    m_report.warnings.push_back("what was sent could not be noted: " + m_manifest.Failure());
  }
  SetPhase(Phase::kDone);
  m_report.result = PublicationResult::kPublished;
  return std::move(m_report);
}

PublicationProgress Publication::Progress() const {
  const std::lock_guard lock(m_mutex);
  return m_progress;
}

// Whether it may go on.
bool Publication::Went(Ending ending, const std::string& reason) {
  TellProgress();
  m_report.bytesSent = m_store.BytesSent();
  if (ending == Ending::kStopped) m_report.result = PublicationResult::kStopped;
  if (ending == Ending::kHopeless) {
    m_report.result = PublicationResult::kFailed;
    m_report.reason = reason;
  }
  return ending == Ending::kDone;
}

bool Publication::Survey(const LocalTree& local) {
  SetPhase(Phase::kLooking);
  if (local.files.empty() && local.problems.empty()) {
    m_report.reason = "there are no files to publish";
    return false;
  }
  if (!Went(m_survey.Look(!m_options.dryRun && local.problems.empty()), m_survey.Reason())) return false;
  m_report.plan = MakePlan(local, m_survey.Tree(), m_manifest.Files(),
                           [](const LocalFile& file) { return ChecksumOfFile(file.source); });
  for (const auto& [folder, text] : m_survey.Refusals()) {
    if (std::binary_search(local.folders.begin(), local.folders.end(), folder)) {
      m_report.plan.problems.push_back(SentenceOf(folder, text));
    } else {
      m_report.warnings.push_back(SentenceOf(folder, text));
    }
  }
  const std::lock_guard lock(m_mutex);
  m_progress.filesToSend = m_report.plan.FilesToSend();
  m_progress.bytesToSend = m_report.plan.BytesToSend();
  return true;
}

bool Publication::MakeFolders() {
  SetPhase(Phase::kSending);
  std::map<std::ptrdiff_t, std::vector<std::string>> levels;
  for (const std::string& folder : m_report.plan.newFolders) levels[DepthOf(folder)].push_back(folder);
  for (const auto& [depth, folders] : levels) {
    for (const std::string& folder : folders) {
      m_jobs.Add({.kind = Kind::kMakeFolder, .path = folder, .target = "", .source = {}},
                 [this, folder](const FinishedJob& finished) {
                   if (finished.outcome.fault != Fault::kNone) LookForFolder(folder, finished.outcome);
                 });
    }
    if (!Went(m_jobs.Drain(), m_jobs.Reason())) return false;
    if (!m_report.problems.empty()) {
      m_report.result = PublicationResult::kIncomplete;
      return false;
    }
  }
  return true;
}

// It may have been made just before the line broke.
void Publication::LookForFolder(const std::string& folder, const Outcome& refused) {
  m_jobs.Add({.kind = Kind::kList, .path = folder, .target = "", .source = {}},
             [this, folder, refused](const FinishedJob& finished) {
               if (finished.outcome.fault != Fault::kNone) Fail(folder, refused.text);
             });
}

// Until everything is there, under its own or under its staged name.
bool Publication::Send() {
  std::vector<PlannedFile*> files;
  for (PlannedFile& planned : m_report.plan.files) {
    if (!planned.isSent) files.push_back(&planned);
  }
  for (int round = 0; round < kRounds && !files.empty(); ++round) {
    m_isLastRound = round + 1 == kRounds;
    if (!SendAll(files)) return false;
    if (!m_report.problems.empty()) break;
    if (!Check(files)) return false;
  }
  for (const PlannedFile* wrong : files) {
    if (!m_report.problems.empty()) break;
    Fail(wrong->file.path, "it does not arrive whole");
  }
  if (m_report.problems.empty()) return true;
  m_report.result = PublicationResult::kIncomplete;
  return false;
}

bool Publication::SendAll(const std::vector<PlannedFile*>& files) {
  SetPhase(Phase::kSending);
  for (PlannedFile* planned : files) {
    m_manifest.Forget(planned->file.path);
    m_jobs.Add({.kind = Kind::kSend,
                .path = RemoteNameOf(*planned),
                .target = "",
                .source = planned->file.source,
                .size = planned->file.state.size},
               [this, planned](const FinishedJob& finished) { TakeSent(*planned, finished.outcome); });
  }
  return Went(m_jobs.Drain(), m_jobs.Reason());
}

void Publication::TakeSent(PlannedFile& planned, const Outcome& outcome) {
  const LocalFile& file = planned.file;
  if (outcome.fault != Fault::kNone) {
    // What a server refuses now it may take in a moment.
    if (outcome.fault != Fault::kRefused || m_isLastRound) Fail(file.path, outcome.text);
    if (outcome.fault == Fault::kFull) m_jobs.GiveUp("the server has no space left: " + outcome.text);
    if (++m_failuresInARow >= kEnoughFailures) m_jobs.GiveUp(outcome.text);
    return;
  }
  const auto checksum = ChecksumOfFile(file.source);
  if (!checksum || StateOf(file.source) != file.state) {
    Fail(file.path, "it was changed while it was being sent");
    return;
  }
  planned.isSent = true;
  m_failuresInARow = 0;
  ++m_report.filesSent;
  m_manifest.Note(file.path,
                  {.checksum = *checksum, .state = SettledState(file), .isPlaced = !planned.isStaged});
}

// Leaves those that are on the server with another size, or not at all.
bool Publication::Check(std::vector<PlannedFile*>& files) {
  SetPhase(Phase::kChecking);
  std::set<std::string> folders;
  for (const PlannedFile* planned : files) folders.insert(ParentOf(planned->file.path));
  if (!Went(m_survey.LookAgain(folders), m_survey.Reason())) return false;
  std::erase_if(files, [&](const PlannedFile* planned) {
    const std::string name = RemoteNameOf(*planned);
    if (!planned->isSent || !IsListed(name)) return planned->isSent;
    const auto found = m_survey.Tree().find(name);
    if (found == m_survey.Tree().end() || found->second.kind != EntryKind::kFile) return false;
    return found->second.size.value_or(planned->file.state.size) == planned->file.state.size;
  });
  for (PlannedFile* planned : files) {
    if (planned->isSent) --m_report.filesSent;
    planned->isSent = false;
  }
  return true;
}

bool Publication::Place() {
  SetPhase(Phase::kPlacing);
  const std::vector<PlannedFile>& files = m_report.plan.files;
  for (auto next = files.begin(); next != files.end();) {
    const int rank = next->rank;
    for (; next != files.end() && next->rank == rank; ++next) {
      if (!next->isStaged) continue;
      const std::string& path = next->file.path;
      m_jobs.Add({.kind = next->replaces ? Kind::kReplace : Kind::kRename,
                  .path = StagedName(path),
                  .target = path,
                  .source = {}},
                 [this, next](const FinishedJob& finished) { TakePlaced(*next, finished.outcome); });
    }
    if (!Went(m_jobs.Drain(), m_jobs.Reason()) || !CheckInPlace()) return false;
    // Pages and KML that show what is not in its place would be worse than the old ones.
    if (!m_report.problems.empty()) {
      m_report.result = PublicationResult::kIncomplete;
      return false;
    }
  }
  return true;
}

void Publication::TakePlaced(const PlannedFile& planned, const Outcome& outcome) {
  if (outcome.fault == Fault::kNone) return NotePlaced(planned.file.path);
  // Not all servers let one rename.
  if (outcome.fault == Fault::kRefused) return SendInPlace(planned, outcome);
  Fail(planned.file.path, outcome.text);
}

void Publication::SendInPlace(const PlannedFile& planned, const Outcome& refused) {
  const LocalFile& file = planned.file;
  const auto there = m_survey.Tree().find(file.path);
  const bool isLink = there != m_survey.Tree().end() && there->second.kind != EntryKind::kFile;
  if (isLink || StateOf(file.source) != file.state) return Fail(file.path, refused.text);
  m_jobs.Add(
      {.kind = Kind::kSend, .path = file.path, .target = "", .source = file.source, .size = file.state.size},
      [this, &planned](const FinishedJob& finished) {
        const std::string& path = planned.file.path;
        if (finished.outcome.fault != Fault::kNone) return Fail(path, finished.outcome.text);
        m_sentInPlace.push_back(&planned);
        m_report.plan.leftovers.push_back(StagedName(path));
      });
}

// What was sent in its place is looked at like all that was sent.
bool Publication::CheckInPlace() {
  std::set<std::string> folders;
  for (const PlannedFile* planned : m_sentInPlace) folders.insert(ParentOf(planned->file.path));
  if (!folders.empty() && !Went(m_survey.LookAgain(folders), m_survey.Reason())) return false;
  for (const PlannedFile* planned : m_sentInPlace) {
    const auto found = m_survey.Tree().find(planned->file.path);
    const bool isWhole = found != m_survey.Tree().end() &&
                         found->second.size.value_or(planned->file.state.size) == planned->file.state.size &&
                         StateOf(planned->file.source) == planned->file.state;
    if (isWhole || !IsListed(planned->file.path)) {
      NotePlaced(planned->file.path);
    } else {
      Fail(planned->file.path, "it does not arrive whole");
    }
  }
  m_sentInPlace.clear();
  return true;
}

void Publication::NotePlaced(const std::string& path) {
  const SentFile* sent = m_manifest.Find(path);
  if (sent == nullptr) return;
  SentFile placed = *sent;
  placed.isPlaced = true;
  m_manifest.Note(path, placed);
}

bool Publication::DeleteFiles(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    m_jobs.Add({.kind = Kind::kDelete, .path = path, .target = "", .source = {}},
               [this, path](const FinishedJob& finished) {
                 if (finished.outcome.fault == Fault::kNone) {
                   ++m_report.filesDeleted;
                 } else {
                   m_report.warnings.push_back(SentenceOf(path, "not deleted: " + finished.outcome.text));
                 }
               });
  }
  return Went(m_jobs.Drain(), m_jobs.Reason());
}

// Those that are empty by now, the deepest first.
bool Publication::DeleteFolders() {
  std::map<std::ptrdiff_t, std::vector<std::string>, std::greater<>> levels;
  for (const std::string& folder : m_report.plan.extraFolders) levels[DepthOf(folder)].push_back(folder);
  for (const auto& [depth, folders] : levels) {
    for (const std::string& folder : folders) {
      m_jobs.Add({.kind = Kind::kRemoveFolder, .path = folder, .target = "", .source = {}},
                 [this, folder](const FinishedJob& finished) {
                   if (finished.outcome.fault == Fault::kNone) return;
                   m_report.warnings.push_back(SentenceOf(folder, "not deleted: " + finished.outcome.text));
                 });
    }
    if (!Went(m_jobs.Drain(), m_jobs.Reason())) return false;
  }
  return true;
}

void Publication::ForgetOldFiles(const LocalTree& local) {
  std::vector<std::string> old;
  for (const auto& [path, sent] : m_manifest.Files()) {
    const auto isBefore = [](const LocalFile& file, const std::string& name) { return file.path < name; };
    const auto found = std::lower_bound(local.files.begin(), local.files.end(), path, isBefore);
    if (found == local.files.end() || found->path != path) old.push_back(path);
  }
  for (const std::string& path : old) m_manifest.Forget(path);
}

void Publication::Fail(const std::string& path, const std::string& why) {
  m_report.problems.push_back(SentenceOf(path, why));
}

void Publication::SetPhase(Phase phase) {
  const std::lock_guard lock(m_mutex);
  m_progress.phase = phase;
}

void Publication::TellProgress() {
  const std::lock_guard lock(m_mutex);
  m_progress.files = m_report.filesSent;
  m_progress.bytes = std::min(m_store.BytesSent(), m_progress.bytesToSend);
  m_progress.failures = m_report.problems.size();
  m_progress.connections = m_jobs.Connections();
  m_progress.trouble = m_jobs.Trouble();
}

}  // namespace mirror
