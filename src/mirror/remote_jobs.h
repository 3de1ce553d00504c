// Gets jobs done on a store that is far away: several at once, again after a break of the line, with pauses
// that grow, and with fewer connections where the server wants no more. One thread.
#ifndef MOSAICON_MIRROR_REMOTE_JOBS_H_
#define MOSAICON_MIRROR_REMOTE_JOBS_H_

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>

#include "mirror/remote_store.h"

namespace mirror {

// Time as a test wants it to pass.
class Clock {
 public:
  using Time = std::chrono::steady_clock::time_point;
  virtual ~Clock() = default;
  virtual Time Now() { return std::chrono::steady_clock::now(); }
};

struct Patience {
  std::chrono::seconds firstPause{1};     // after a break of the line; each further one is twice as long,
  std::chrono::seconds longestPause{30};  // up to this
  std::chrono::seconds outage{600};       // without one job done after which it is given up
  int attempts = 3;                       // for a job that breaks the line each time while others get done
};

enum class Ending { kDone, kStopped, kHopeless };

class RemoteJobs {
 public:
  using OnEnd = std::function<void(const FinishedJob& job)>;

  // All must outlive it. stop is set by other threads.
  RemoteJobs(RemoteStore& store, Clock& clock, const std::atomic<bool>& stop, int connections,
             const Patience& patience);

  // onEnd is called by Drain, and may add more. It sees no kTooMany and no kHopeless, and kLost only when
  // all attempts have been in vain.
  void Add(RemoteJob job, OnEnd onEnd);
  // Returns when nothing is left to do, when stop is set, or when there is no hope (see Reason); all that was
  // added is then forgotten.
  Ending Drain();

  // From within onEnd: there is no sense in going on. Drain returns kHopeless.
  void GiveUp(const std::string& reason) { m_reason = reason; }

  // What took the hope.
  const std::string& Reason() const { return m_reason; }
  int Connections() const { return m_connections; }
  // What the line is waiting for, and since when nothing got done; empty while all is well.
  const std::string& Trouble() const { return m_trouble; }
  // Called in each turn of Drain, at least ten times a second.
  void SetOnTurn(std::function<void()> onTurn) { m_onTurn = std::move(onTurn); }

 private:
  struct Task {
    RemoteJob job;
    OnEnd onEnd;
    int connections = 1;  // that it was started among
    int losses = 0;
    int attempts = 0;
    std::uint64_t doneBefore = 0;  // how many jobs were done when it was started
    Clock::Time started;
  };

  void StartWaiting();
  void Take(const FinishedJob& finished);
  void AddProbe();
  void TakeLoss(Task task, const FinishedJob& finished);
  void TakeRefusedConnection(Task task, const Outcome& outcome);
  Ending Forget(Ending ending);

  RemoteStore& m_store;
  Clock& m_clock;
  const std::atomic<bool>& m_stop;
  const Patience m_patience;
  int m_connections;
  std::deque<Task> m_waiting;
  std::map<std::uint64_t, Task> m_running;
  std::uint64_t m_nextId = 1;
  std::uint64_t m_done = 0;    // jobs that came to their end, well or not
  Clock::Time m_troubleBegan;  // with the first loss after the last success
  Clock::Time m_pauseEnd;
  std::chrono::seconds m_pause{0};
  std::string m_reason;
  std::string m_trouble;
  std::function<void()> m_onTurn;
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_REMOTE_JOBS_H_
