#include "tiler/progress_records.h"

#include <algorithm>
#include <utility>

#include "tiler/number_text.h"

namespace tiler {

ProgressRecords::ProgressRecords(Write write, std::chrono::milliseconds heartbeat)
    : m_shared(std::make_shared<Shared>()) {
  m_shared->write = std::move(write);
  m_shared->heartbeat = heartbeat;
  std::thread(&ProgressRecords::WriteAll, m_shared).detach();
}

ProgressRecords::~ProgressRecords() {
  std::unique_lock lock(m_shared->mutex);
  m_shared->closing = true;
  m_shared->changed.notify_all();
  m_shared->changed.wait_for(lock, kPatience, [this] { return m_shared->ended; });
}

void ProgressRecords::Start() {
  Put(0);
}

void ProgressRecords::Report(std::int64_t done, std::int64_t total) {
  Put(total > 0 ? static_cast<int>(std::min<std::int64_t>(99, done * 100 / total)) : 0);
}

void ProgressRecords::Finish() {
  Put(100);
}

void ProgressRecords::Put(int percent) {
  const std::lock_guard order(m_mutex);
  if (percent <= m_percent) return;
  m_percent = percent;
  const std::lock_guard lock(m_shared->mutex);
  m_shared->records.push_back(percent);
  m_shared->changed.notify_all();
}

void ProgressRecords::WriteAll(const std::shared_ptr<Shared>& shared) {
  int percent = 0;
  bool isRead = true;
  while (isRead) {
    {
      std::unique_lock lock(shared->mutex);
      shared->changed.wait_for(lock, shared->heartbeat,
                               [&] { return shared->closing || !shared->records.empty(); });
      if (!shared->records.empty()) {
        percent = shared->records.front();
        shared->records.pop_front();
      } else if (shared->closing) {
        break;
      }
    }
    isRead = shared->write("Progress " + WithDecimals(percent / 100.0, 2) + " done\n");
  }
  const std::lock_guard lock(shared->mutex);
  shared->ended = true;
  shared->changed.notify_all();
}

}  // namespace tiler
