// A server in memory that can fail at every step, for tests of what works on a RemoteStore. It is
// deterministic: what runs at the same time is finished in an order that depends on a seed alone.
#ifndef MOSAICON_MIRROR_TESTING_FAKE_STORE_H_
#define MOSAICON_MIRROR_TESTING_FAKE_STORE_H_

#include <deque>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "mirror/remote_jobs.h"

namespace mirror {

class FakeClock : public Clock {
 public:
  Time Now() override { return m_now; }
  void Pass(std::chrono::milliseconds time) { m_now += time; }

 private:
  Time m_now{};
};

class FakeStore : public RemoteStore {
 public:
  struct Entry {
    EntryKind kind = EntryKind::kFile;
    std::string bytes;
    bool operator==(const Entry&) const = default;
  };
  using Tree = std::map<std::string, Entry>;  // by path, without the folder of the store

  // What becomes of a job in place of success.
  enum class Mishap {
    kNone,
    kBefore,  // the fault, and nothing has happened
    kAfter,   // the fault, although it has happened
    kHalf,    // the fault, and half of a file was written; else like kBefore
  };
  struct Trouble {
    Mishap mishap = Mishap::kNone;
    Outcome outcome;
  };

  explicit FakeStore(FakeClock& clock, unsigned seed = 1) : m_clock(clock), m_random(seed) {}

  Tree& Files() { return m_tree; }
  void PutFolder(const std::string& path) { m_tree[path] = {EntryKind::kFolder, ""}; }
  void Put(const std::string& path, const std::string& bytes);  // the folders above come with it
  bool m_isThere = true;                                        // the folder of the store
  bool m_canRename = true;
  bool m_replacesByRename = true;
  int m_mostConnections = 100;

  // Asked for each job, by its number, before it is finished.
  std::function<Trouble(std::size_t number, const RemoteJob& job)> m_trouble;
  // Called after each change of the tree.
  std::function<void()> m_onChange;
  // All jobs that were finished, in this order, such as "send a/b.png".
  std::vector<std::string> m_done;
  std::size_t Count(const std::string& start) const;

  void Start(std::uint64_t id, const RemoteJob& job) override;
  std::vector<FinishedJob> Wait(std::chrono::milliseconds atMost) override;
  void Cancel() override { m_running.clear(); }
  void SetConnections(int count) override { m_connections = count; }
  std::uint64_t BytesSent() const override { return m_bytes; }
  int m_connections = 0;

 private:
  FinishedJob Finish(std::uint64_t id, const RemoteJob& job);
  Outcome Do(const RemoteJob& job, FinishedJob& finished);
  Outcome Send(const RemoteJob& job, bool half);
  Outcome Rename(const RemoteJob& job);
  bool IsFolder(const std::string& path) const;
  void Changed() const {
    if (m_onChange) m_onChange();
  }

  FakeClock& m_clock;
  std::mt19937 m_random;
  Tree m_tree;
  std::deque<std::pair<std::uint64_t, RemoteJob>> m_running;
  std::size_t m_number = 0;
  std::uint64_t m_bytes = 0;
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_TESTING_FAKE_STORE_H_
