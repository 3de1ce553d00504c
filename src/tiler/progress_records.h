// Tells the program that started the run how far it is.
#ifndef MOSAICON_TILER_PROGRESS_RECORDS_H_
#define MOSAICON_TILER_PROGRESS_RECORDS_H_

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace tiler {

// Writes "Progress 0.37 done" whenever the whole per cent changes, and never goes back. A thread of its own
// does the writing. It repeats the last record when there was none for two seconds, from the very beginning
// to the end: the reader can end a run only when a record arrives, and the tiles are silent for long while a
// large image is opened. And it is the only one to wait when nobody empties the pipe: the tiles are still
// wanted. Any thread.
class ProgressRecords {
 public:
  // Writes a record; false when nobody reads any more. It may block, and outlive this object by that.
  using Write = std::function<bool(const std::string& record)>;

  explicit ProgressRecords(Write write,
                           std::chrono::milliseconds heartbeat = std::chrono::milliseconds(2000));
  // Waits until all records are written, or some seconds when nobody reads them.
  ~ProgressRecords();
  ProgressRecords(const ProgressRecords&) = delete;
  ProgressRecords& operator=(const ProgressRecords&) = delete;

  void Start();
  // 1.00 is left to Finish().
  void Report(std::int64_t done, std::int64_t total);
  // Once, and only when everything succeeded.
  void Finish();

  // How long the destructor waits; the reader looks every five seconds.
  static constexpr std::chrono::seconds kPatience{10};

 private:
  // Lives as long as the writing thread, which may be longer than the rest.
  struct Shared {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<int> records;  // per cent
    bool closing = false;
    bool ended = false;
    Write write;
    std::chrono::milliseconds heartbeat;
  };

  static void WriteAll(const std::shared_ptr<Shared>& shared);
  void Put(int percent);

  std::mutex m_mutex;
  int m_percent = -1;
  std::shared_ptr<Shared> m_shared;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_PROGRESS_RECORDS_H_
