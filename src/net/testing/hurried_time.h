// Time for a client that talks to a scripted server: where both wait for each other nothing can happen until
// the client's wait has run out, and so it has. Everything else takes its real time. Test code.
#ifndef MOSAICON_NET_TESTING_HURRIED_TIME_H_
#define MOSAICON_NET_TESTING_HURRIED_TIME_H_

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "net/testing/scripted_server.h"
#include "net/testing/socket_options.h"
#include "net/wait_time.h"

// For the thread that makes it, as long as it lives.
class HurriedTime : public WaitTime {
 public:
  HurriedTime() { SetWaitTime(this); }
  ~HurriedTime() override { SetWaitTime(nullptr); }
  HurriedTime(const HurriedTime&) = delete;
  HurriedTime& operator=(const HurriedTime&) = delete;

  // From now on so many milliseconds pass in one.
  void RunAt(std::uint64_t speed) {
    m_nBase = Ticks();
    m_nRealBase = SystemTicks();
    m_nSpeed = speed;
  }

  // Lets so many milliseconds pass at once as soon as the client waits for something that it would not wait
  // for much longer. For another thread.
  void PassDuringWait(long long longest, std::uint64_t milliseconds) {
    while (m_nWaiting == 0 || m_nWaiting > longest) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    m_nBase += milliseconds;
  }

  std::uint64_t Ticks() override { return m_nBase + (SystemTicks() - m_nRealBase) * m_nSpeed; }
  SocketWait WaitFor(SocketHandle socket, SocketEvent event, long long microseconds) override {
    SendAtOnce(socket);
    m_nWaiting = microseconds / 1000;
    const SocketWait result = WaitOrSkip(socket, event, microseconds);
    m_nWaiting = 0;
    return result;
  }

  // With whom the client talks; null: nothing is skipped.
  const ScriptedServer* server = nullptr;
  // The waits that were skipped, in milliseconds.
  std::vector<long long> vainWaits;

 private:
  SocketWait WaitOrSkip(SocketHandle socket, SocketEvent event, long long microseconds) {
    int quietGlances = 0;
    for (long long left = microseconds;; left -= kGlance) {
      const SocketWait waited = WaitForSystemSocket(socket, event, std::min(left, kGlance));
      if (waited != SocketWait::kNotYet || left <= kGlance) return waited;
      quietGlances = server != nullptr && server->IsIdle() ? quietGlances + 1 : 0;
      if (quietGlances < kGlancesToBelieve) continue;
      m_nBase += static_cast<std::uint64_t>((left - kGlance) / 1000);
      vainWaits.push_back(microseconds / 1000);
      return SocketWait::kNotYet;
    }
  }

  static constexpr long long kGlance = 10000;  // microseconds
  // What is on its way may need a moment.
  static constexpr int kGlancesToBelieve = 10;

  std::atomic<std::uint64_t> m_nBase = SystemTicks();
  std::uint64_t m_nRealBase = m_nBase;
  std::uint64_t m_nSpeed = 1;
  std::atomic<long long> m_nWaiting = 0;  // milliseconds that the client waits for; 0: it does not
};

#endif  // MOSAICON_NET_TESTING_HURRIED_TIME_H_
