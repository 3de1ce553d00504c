#include "mirror/testing/fake_store.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "mirror/remote_path.h"

namespace mirror {

namespace {

constexpr std::chrono::milliseconds kRoundTrip{10};

const char* NameOf(RemoteJob::Kind kind) {
  switch (kind) {
    case RemoteJob::Kind::kList:
      return "list";
    case RemoteJob::Kind::kMakeFolder:
      return "make";
    case RemoteJob::Kind::kSend:
      return "send";
    case RemoteJob::Kind::kRename:
      return "rename";
    case RemoteJob::Kind::kReplace:
      return "replace";
    case RemoteJob::Kind::kDelete:
      return "delete";
    case RemoteJob::Kind::kRemoveFolder:
      return "remove";
  }
  return "";
}

}  // namespace

void FakeStore::Put(const std::string& path, const std::string& bytes) {
  for (std::string folder = ParentOf(path); !folder.empty(); folder = ParentOf(folder)) PutFolder(folder);
  m_tree[path] = {EntryKind::kFile, bytes};
}

std::size_t FakeStore::Count(const std::string& start) const {
  return static_cast<std::size_t>(std::count_if(
      m_done.begin(), m_done.end(), [&](const std::string& job) { return job.starts_with(start); }));
}

void FakeStore::Start(std::uint64_t id, const RemoteJob& job) {
  m_running.emplace_back(id, job);
}

std::vector<FinishedJob> FakeStore::Wait(std::chrono::milliseconds atMost) {
  if (m_running.empty()) {
    m_clock.Pass(atMost);
    return {};
  }
  m_clock.Pass(kRoundTrip);
  const size_t chosen = m_random() % m_running.size();
  const auto [id, job] = m_running[chosen];
  const bool isOneTooMany = static_cast<int>(m_running.size()) > m_mostConnections;
  m_running.erase(m_running.begin() + static_cast<std::ptrdiff_t>(chosen));
  if (isOneTooMany) return {{.id = id, .outcome = {Fault::kTooMany, "too many connections"}, .entries = {}}};
  return {Finish(id, job)};
}

FinishedJob FakeStore::Finish(std::uint64_t id, const RemoteJob& job) {
  FinishedJob finished = {.id = id, .outcome = {}, .entries = {}};
  const Trouble trouble = m_trouble ? m_trouble(m_number++, job) : Trouble();
  m_done.push_back(std::string(NameOf(job.kind)) + " " + job.path);
  switch (trouble.mishap) {
    case Mishap::kNone:
      finished.outcome = Do(job, finished);
      return finished;
    case Mishap::kBefore:
      break;
    case Mishap::kAfter:
      Do(job, finished);
      break;
    case Mishap::kHalf:
      if (job.kind == RemoteJob::Kind::kSend) Send(job, true);
      break;
  }
  finished.entries.clear();
  finished.outcome = trouble.outcome;
  return finished;
}

bool FakeStore::IsFolder(const std::string& path) const {
  if (path.empty()) return m_isThere;
  const auto found = m_tree.find(path);
  return found != m_tree.end() && found->second.kind == EntryKind::kFolder;
}

Outcome FakeStore::Do(const RemoteJob& job, FinishedJob& finished) {
  const Outcome missing = {Fault::kMissing, "no such file or folder"};
  const Outcome refused = {Fault::kRefused, "it is refused"};
  const auto found = m_tree.find(job.path);
  switch (job.kind) {
    case RemoteJob::Kind::kList:
      if (!IsFolder(job.path)) return missing;
      for (const auto& [path, entry] : m_tree) {
        if (ParentOf(path) != job.path) continue;
        finished.entries.push_back(
            {.name = path.substr(job.path.empty() ? 0 : job.path.size() + 1),
             .kind = entry.kind,
             .size = entry.kind == EntryKind::kFile ? std::optional(entry.bytes.size()) : std::nullopt});
      }
      return {};
    case RemoteJob::Kind::kMakeFolder:
      if (job.path.empty() && m_isThere) return refused;
      if (job.path.empty()) {
        m_isThere = true;
        return {};
      }
      if (found != m_tree.end() || !IsFolder(ParentOf(job.path))) return refused;
      PutFolder(job.path);
      return {};
    case RemoteJob::Kind::kSend:
      return Send(job, false);
    case RemoteJob::Kind::kRename:
    case RemoteJob::Kind::kReplace:
      return Rename(job);
    case RemoteJob::Kind::kDelete:
      if (found == m_tree.end()) return missing;
      if (found->second.kind == EntryKind::kFolder) return refused;
      m_tree.erase(found);
      Changed();
      return {};
    case RemoteJob::Kind::kRemoveFolder:
      if (!IsFolder(job.path)) return missing;
      for (const auto& [path, entry] : m_tree) {
        if (ParentOf(path) == job.path) return refused;
      }
      m_tree.erase(job.path);
      return {};
  }
  return refused;
}

Outcome FakeStore::Send(const RemoteJob& job, bool half) {
  std::ifstream file(job.source, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (!file || bytes.size() != job.size) return {Fault::kLocal, "it is another file by now"};
  if (!IsFolder(ParentOf(job.path)) || IsFolder(job.path)) return {Fault::kRefused, "it is refused"};
  if (half) bytes.resize(bytes.size() / 2);
  m_bytes += bytes.size();
  Entry& entry = m_tree[job.path];
  // Through a link, as a server would.
  if (entry.kind == EntryKind::kLink) return {};
  entry = {EntryKind::kFile, bytes};
  Changed();
  return {};
}

Outcome FakeStore::Rename(const RemoteJob& job) {
  const auto found = m_tree.find(job.path);
  if (found == m_tree.end()) return {Fault::kMissing, "no such file or folder"};
  if (!m_canRename || IsFolder(job.target)) return {Fault::kRefused, "it is refused"};
  if (m_tree.contains(job.target) && job.kind == RemoteJob::Kind::kRename && !m_replacesByRename) {
    return {Fault::kRefused, "it is there"};
  }
  m_tree[job.target] = found->second;
  m_tree.erase(found);
  Changed();
  return {};
}

}  // namespace mirror
