#include "mirror/remote_jobs.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace mirror {

namespace {

constexpr std::chrono::milliseconds kTurn{100};
constexpr int kSuspect = 3;  // losses of one job

}  // namespace

RemoteJobs::RemoteJobs(RemoteStore& store, Clock& clock, const std::atomic<bool>& stop, int connections,
                       const Patience& patience)
    : m_store(store),
      m_clock(clock),
      m_stop(stop),
      m_patience(patience),
      m_connections(std::max(connections, 1)),
      m_pauseEnd(clock.Now()) {}

void RemoteJobs::Add(RemoteJob job, OnEnd onEnd) {
  m_waiting.push_back({.job = std::move(job), .onEnd = std::move(onEnd), .started = {}});
}

Ending RemoteJobs::Drain() {
  while (!m_waiting.empty() || !m_running.empty()) {
    if (m_stop) return Forget(Ending::kStopped);
    StartWaiting();
    const auto pause = std::chrono::duration_cast<std::chrono::milliseconds>(m_pauseEnd - m_clock.Now());
    const auto turn = m_running.empty() ? std::clamp(pause, std::chrono::milliseconds(1), kTurn) : kTurn;
    for (const FinishedJob& finished : m_store.Wait(turn)) {
      Take(finished);
      if (!m_reason.empty()) return Forget(Ending::kHopeless);
    }
    if (m_onTurn) m_onTurn();
  }
  return Ending::kDone;
}

void RemoteJobs::StartWaiting() {
  if (m_clock.Now() < m_pauseEnd) return;
  // The first one alone shows whether anything works at all: four wrong passwords lock many a user out.
  const size_t most = m_done == 0 ? 1 : static_cast<size_t>(m_connections);
  while (!m_waiting.empty() && m_running.size() < most) {
    Task task = std::move(m_waiting.front());
    m_waiting.pop_front();
    task.doneBefore = m_done;
    task.started = m_clock.Now();
    task.connections = static_cast<int>(most);
    const std::uint64_t id = m_nextId++;
    m_store.Start(id, task.job);
    m_running.emplace(id, std::move(task));
  }
}

void RemoteJobs::Take(const FinishedJob& finished) {
  const auto found = m_running.find(finished.id);
  if (found == m_running.end()) return;
  Task task = std::move(found->second);
  m_running.erase(found);
  switch (finished.outcome.fault) {
    case Fault::kLost:
      return TakeLoss(std::move(task), finished);
    case Fault::kTooMany:
      return TakeRefusedConnection(std::move(task), finished.outcome);
    case Fault::kHopeless:
      // Some servers refuse the login where they mean that there are enough connections.
      if (task.connections > 1) return TakeRefusedConnection(std::move(task), finished.outcome);
      m_reason = finished.outcome.text;
      return;
    default:
      break;
  }
  ++m_done;
  m_pause = std::chrono::seconds(0);
  m_trouble.clear();
  task.onEnd(finished);
}

void RemoteJobs::TakeLoss(Task task, const FinishedJob& finished) {
  const Clock::Time now = m_clock.Now();
  // While nothing gets done at all it is not this job's fault.
  if (m_done > task.doneBefore && ++task.attempts >= m_patience.attempts) {
    ++m_done;
    return task.onEnd(finished);
  }
  if (m_trouble.empty()) m_troubleBegan = now;
  m_trouble = finished.outcome.text;
  if (now - m_troubleBegan >= m_patience.outage) {
    m_reason = finished.outcome.text;
    return;
  }
  // Those that ran beside it are lost by the same break.
  if (task.started >= m_pauseEnd) {
    m_pause = m_pause.count() == 0 ? m_patience.firstPause : std::min(m_pause * 2, m_patience.longestPause);
    m_pauseEnd = now + m_pause;
  }
  const bool isSuspect = ++task.losses >= kSuspect;
  m_waiting.push_front(std::move(task));
  if (isSuspect) AddProbe();
}

// Shows whether it is the line, or one job that no line survives.
void RemoteJobs::AddProbe() {
  m_waiting.push_front({.job = {.kind = RemoteJob::Kind::kList, .path = "", .target = "", .source = {}},
                        .onEnd = [](const FinishedJob&) {},
                        .started = {}});
}

void RemoteJobs::TakeRefusedConnection(Task task, const Outcome& outcome) {
  if (m_connections == 1) {
    // The only one. It may be that of an earlier run that the server has not noticed the end of.
    return TakeLoss(std::move(task), {.id = 0, .outcome = outcome, .entries = {}});
  }
  m_store.SetConnections(--m_connections);
  m_waiting.push_front(std::move(task));
}

Ending RemoteJobs::Forget(Ending ending) {
  m_store.Cancel();
  m_waiting.clear();
  m_running.clear();
  return ending;
}

}  // namespace mirror
