#include "mirror/curl_store.h"

#include "mirror/curl_global.h"

namespace mirror {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kPace{5};  // between looks whether the next file may go

}  // namespace

CurlStore::CurlStore(const PublishAddress& address, const ServerAccess& access) {
  InitialiseCurl();
  m_session.address = address;
  m_session.access = access;
}

void CurlStore::Start(std::uint64_t id, const RemoteJob& job) {
  m_waiting.emplace_back(id, job);
}

std::vector<FinishedJob> CurlStore::Wait(milliseconds atMost) {
  const auto end = steady_clock::now() + atMost;
  std::vector<FinishedJob> finished;
  while (true) {
    StartWaiting();
    Go(finished);
    const auto left = std::chrono::duration_cast<milliseconds>(end - steady_clock::now());
    if (!finished.empty() || left.count() <= 0) return finished;
    WaitForSockets(left);
  }
}

void CurlStore::Cancel() {
  m_waiting.clear();
  for (const auto& lane : m_lanes) lane->Cancel();
  m_isEntering = false;
}

bool CurlStore::IsEncrypted() const {
  const Scheme scheme = m_session.address.scheme;
  const bool isAlways = scheme == Scheme::kSftp || scheme == Scheme::kFtps || scheme == Scheme::kFtpes;
  return isAlways || !m_session.isIn || m_session.isEncrypted;
}

std::size_t CurlStore::Running() const {
  return static_cast<std::size_t>(
      std::count_if(m_lanes.begin(), m_lanes.end(), [](const auto& lane) { return !lane->IsFree(); }));
}

// One that is connected, if there is any; null when there are enough at work.
CurlLane* CurlStore::FreeLane() {
  if (Running() >= static_cast<std::size_t>(m_session.connections)) return nullptr;
  CurlLane* free = nullptr;
  for (const auto& lane : m_lanes) {
    if (lane->IsFree() && (free == nullptr || !free->HasWorked())) free = lane.get();
  }
  if (free != nullptr) return free;
  return m_lanes.emplace_back(std::make_unique<CurlLane>()).get();
}

void CurlStore::StartWaiting() {
  if (m_waiting.empty() || m_isEntering) return;
  if (!m_session.isIn) {
    m_isEntering = true;
    FreeLane()->Enter(m_session);
    return;
  }
  while (!m_waiting.empty()) {
    CurlLane* lane = FreeLane();
    if (lane == nullptr || IsTooEarlyFor(m_waiting.front().second)) return;
    const auto& [id, job] = m_waiting.front();
    lane->Start(m_session, id, job);
    m_waiting.pop_front();
  }
}

// curl keeps the rate of one file after the other; small ones are over before it has begun to.
bool CurlStore::IsTooEarlyFor(const RemoteJob& job) {
  const std::uint64_t rate = m_session.access.bytesPerSecond;
  if (rate == 0 || job.kind != RemoteJob::Kind::kSend) return false;
  const auto now = steady_clock::now();
  if (now < m_nextSending) return true;
  const std::chrono::duration<double> takes(static_cast<double>(job.size) / static_cast<double>(rate));
  m_nextSending = std::max(now, m_nextSending) + std::chrono::duration_cast<steady_clock::duration>(takes);
  return false;
}

void CurlStore::Go(std::vector<FinishedJob>& finished) {
  for (const auto& lane : m_lanes) {
    auto ended = lane->Go();
    if (!ended) continue;
    if (!m_isEntering) {
      finished.push_back(std::move(*ended));
      continue;
    }
    m_isEntering = false;
    if (ended->outcome.fault == Fault::kNone) break;
    // What keeps it out is the outcome of who wanted in.
    finished.push_back({.id = m_waiting.front().first, .outcome = ended->outcome, .entries = {}});
    m_waiting.pop_front();
  }
}

void CurlStore::WaitForSockets(milliseconds atMost) {
  std::vector<curl_waitfd> sockets;
  if (!m_waiting.empty()) atMost = std::min(atMost, kPace);
  for (const auto& lane : m_lanes) {
    lane->AddSockets(sockets);
    atMost = std::min(atMost, milliseconds(lane->MillisecondsToWait()));
  }
  if (m_lanes.empty() || atMost.count() <= 0) return;
  // Any of them can wait; a free one knows no sockets of its own.
  curl_multi_poll(m_lanes.front()->Multi(), sockets.data(), static_cast<unsigned>(sockets.size()),
                  static_cast<int>(atMost.count()), nullptr);
}

}  // namespace mirror
