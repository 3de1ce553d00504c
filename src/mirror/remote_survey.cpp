#include "mirror/remote_survey.h"

#include "mirror/remote_path.h"

namespace mirror {

namespace {

// No map has so many; a server that makes them up would have them listed for ever.
constexpr size_t kMostEntries = 5'000'000;
constexpr std::ptrdiff_t kDeepest = 40;

std::string In(const std::string& folder, const std::string& name) {
  return folder.empty() ? name : folder + "/" + name;
}

}  // namespace

Ending RemoteSurvey::Look(bool makeRoot) {
  Outcome root;
  m_jobs.Add({.kind = RemoteJob::Kind::kList, .path = "", .target = "", .source = {}},
             [&](const FinishedJob& finished) {
               root = finished.outcome;
               Take("", true, finished);
             });
  const Ending ending = m_jobs.Drain();
  if (ending != Ending::kDone) {
    if (m_reason.empty()) m_reason = m_jobs.Reason();
    return ending;
  }
  // Some servers list nothing where there is nothing to list.
  if (root.fault == Fault::kIllegible) {
    m_reason = root.text;
    return Ending::kHopeless;
  }
  if (root.fault != Fault::kNone || m_tree.empty()) {
    m_refusals.erase("");
    if (makeRoot) return MakeRoot(root);
    if (root.fault != Fault::kNone && root.fault != Fault::kMissing && root.fault != Fault::kRefused) {
      m_reason = root.text;
      return Ending::kHopeless;
    }
  }
  return m_reason.empty() ? Ending::kDone : Ending::kHopeless;
}

Ending RemoteSurvey::MakeRoot(const Outcome& listed) {
  Outcome made;
  m_jobs.Add({.kind = RemoteJob::Kind::kMakeFolder, .path = "", .target = "", .source = {}},
             [&](const FinishedJob& finished) { made = finished.outcome; });
  const Ending ending = m_jobs.Drain();
  if (ending == Ending::kHopeless) m_reason = m_jobs.Reason();
  if (ending != Ending::kDone || made.fault == Fault::kNone || listed.fault == Fault::kNone) return ending;
  m_reason = made.text;
  return Ending::kHopeless;
}

Ending RemoteSurvey::LookAgain(const std::set<std::string>& folders) {
  std::erase_if(m_tree, [&](const auto& entry) {
    return entry.second.kind != EntryKind::kFolder && folders.contains(ParentOf(entry.first));
  });
  for (const std::string& folder : folders) List(folder, false);
  const Ending ending = m_jobs.Drain();
  if (ending == Ending::kHopeless) m_reason = m_jobs.Reason();
  return ending;
}

void RemoteSurvey::List(const std::string& folder, bool andBelow) {
  m_jobs.Add({.kind = RemoteJob::Kind::kList, .path = folder, .target = "", .source = {}},
             [this, folder, andBelow](const FinishedJob& finished) { Take(folder, andBelow, finished); });
}

void RemoteSurvey::Take(const std::string& folder, bool andBelow, const FinishedJob& finished) {
  if (finished.outcome.fault != Fault::kNone) {
    m_refusals[folder] = finished.outcome.text;
    return;
  }
  if (m_tree.size() + finished.entries.size() > kMostEntries || DepthOf(folder) > kDeepest) {
    m_reason = "the folder on the server holds more than can be looked at";
    m_jobs.GiveUp(m_reason);
    return;
  }
  for (const RemoteEntry& entry : finished.entries) {
    const std::string path = In(folder, entry.name);
    m_tree[path] = entry;
    if (andBelow && entry.kind == EntryKind::kFolder) List(path, true);
  }
}

}  // namespace mirror
