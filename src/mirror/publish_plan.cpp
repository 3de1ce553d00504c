#include "mirror/publish_plan.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "kvtools/ascii.h"
#include "mirror/remote_path.h"
#include "mirror/staged_name.h"

namespace mirror {

namespace {

constexpr int kHighestRank = 10;
constexpr std::array<std::string_view, 8> kDocuments = {".html", ".htm", ".kml", ".kmz",
                                                        ".xml",  ".js",  ".css", ".json"};

const RemoteEntry* Find(const RemoteTree& remote, const std::string& path) {
  const auto found = remote.find(path);
  return found == remote.end() ? nullptr : &found->second;
}

bool IsFileOf(const RemoteEntry* entry, std::uint64_t size) {
  return entry != nullptr && entry->kind == EntryKind::kFile && entry->size == size;
}

class Planner {
 public:
  using ChecksumOf = std::function<std::optional<std::string>(const LocalFile&)>;

  Planner(const LocalTree& local, const RemoteTree& remote, const SentFiles& sent,
          const ChecksumOf& checksumOf)
      : m_local(local), m_remote(remote), m_sent(sent), m_checksumOf(checksumOf) {}

  PublishPlan Make() {
    m_plan.problems = m_local.problems;
    PlanFolders();
    // By whatever page: an old map may have had others.
    const bool isSeen = std::any_of(m_remote.begin(), m_remote.end(), [](const auto& entry) {
      return entry.second.kind != EntryKind::kFolder && RankOf(entry.first) > 0;
    });
    for (const LocalFile& file : m_local.files) PlanFile(file, isSeen);
    std::stable_sort(
        m_plan.files.begin(), m_plan.files.end(),
        [](const PlannedFile& left, const PlannedFile& right) { return left.rank < right.rank; });
    PlanExtras();
    return std::move(m_plan);
  }

 private:
  void PlanFolders() {
    for (const std::string& folder : m_local.folders) {
      if (m_blocked.contains(ParentOf(folder))) {
        m_blocked.insert(folder);
        continue;
      }
      const RemoteEntry* there = Find(m_remote, folder);
      if (there == nullptr) {
        m_plan.newFolders.push_back(folder);
      } else if (there->kind != EntryKind::kFolder) {
        m_blocked.insert(folder);
        m_plan.problems.push_back(folder + (there->kind == EntryKind::kLink
                                                ? ": on the server it is a link, which is not followed"
                                                : ": on the server it is no folder"));
      }
    }
  }

  void PlanFile(const LocalFile& file, bool isSeen) {
    if (m_blocked.contains(ParentOf(file.path))) return;
    const RemoteEntry* there = Find(m_remote, file.path);
    if (there != nullptr && there->kind == EntryKind::kFolder) {
      m_plan.problems.push_back(file.path + ": on the server it is a folder");
      return;
    }
    PlannedFile planned = {.file = file,
                           .rank = RankOf(file.path),
                           .isStaged = false,
                           .isSent = false,
                           .replaces = there != nullptr};
    const auto found = m_sent.find(file.path);
    const SentFile* sent = found == m_sent.end() ? nullptr : &found->second;
    if (sent != nullptr && sent->isPlaced && IsFileOf(there, file.state.size) && IsWhatWasSent(file, *sent)) {
      m_plan.unchanged.push_back(file.path);
      return;
    }
    const RemoteEntry* staged = Find(m_remote, StagedName(file.path));
    if (staged != nullptr && staged->kind != EntryKind::kFile) {
      m_plan.problems.push_back(StagedName(file.path) + ": on the server it is no file");
      return;
    }
    planned.isSent =
        sent != nullptr && !sent->isPlaced && IsFileOf(staged, file.state.size) && IsWhatWasSent(file, *sent);
    // What is sent to a link would land where it leads to.
    const bool isOther = there != nullptr && there->kind != EntryKind::kFile;
    planned.isStaged = planned.isSent || isSeen || isOther || planned.rank > 0;
    m_plan.files.push_back(planned);
  }

  bool IsWhatWasSent(const LocalFile& file, const SentFile& sent) const {
    if (file.state.size != sent.state.size) return false;
    return file.state.time == sent.state.time || m_checksumOf(file) == sent.checksum;
  }

  void PlanExtras() {
    // Where the server does not tell capital from small letters, what seems to be another one is ours.
    std::set<std::string> ours;
    for (const std::string& folder : m_local.folders) ours.insert(LowerAscii(folder));
    std::set<std::string> staged;
    for (const LocalFile& file : m_local.files) ours.insert(LowerAscii(file.path));
    for (const PlannedFile& planned : m_plan.files) {
      if (planned.isStaged) staged.insert(StagedName(planned.file.path));
    }
    for (const auto& [path, there] : m_remote) {
      if (ours.contains(LowerAscii(path)) || staged.contains(path) || IsHidden(path)) continue;
      const bool isFolder = there.kind == EntryKind::kFolder;
      const bool isLeftover = !isFolder && IsStagedName(path) &&
                              ours.contains(LowerAscii(path.substr(0, path.size() - kStagedSuffix.size())));
      (isFolder ? m_plan.extraFolders : isLeftover ? m_plan.leftovers : m_plan.extraFiles).push_back(path);
    }
    // What is in a folder goes first.
    std::reverse(m_plan.extraFiles.begin(), m_plan.extraFiles.end());
    std::reverse(m_plan.extraFolders.begin(), m_plan.extraFolders.end());
  }

  const LocalTree& m_local;
  const RemoteTree& m_remote;
  const SentFiles& m_sent;
  const ChecksumOf& m_checksumOf;
  std::set<std::string> m_blocked;  // folders in which nothing can be done
  PublishPlan m_plan;
};

}  // namespace

std::uint64_t PublishPlan::BytesToSend() const {
  std::uint64_t bytes = 0;
  for (const PlannedFile& planned : files) bytes += planned.isSent ? 0 : planned.file.state.size;
  return bytes;
}

std::size_t PublishPlan::FilesToSend() const {
  return static_cast<std::size_t>(
      std::count_if(files.begin(), files.end(), [](const PlannedFile& planned) { return !planned.isSent; }));
}

int RankOf(const std::string& path) {
  const std::string name = LowerAscii(path);
  const bool isDocument = std::any_of(kDocuments.begin(), kDocuments.end(),
                                      [&](std::string_view ending) { return name.ends_with(ending); });
  if (!isDocument) return 0;
  const std::ptrdiff_t depth = DepthOf(path);
  return std::max(1, kHighestRank - static_cast<int>(std::min<std::ptrdiff_t>(depth, kHighestRank)));
}

PublishPlan MakePlan(const LocalTree& local, const RemoteTree& remote, const SentFiles& sent,
                     const std::function<std::optional<std::string>(const LocalFile&)>& checksumOf) {
  return Planner(local, remote, sent, checksumOf).Make();
}

}  // namespace mirror
