// A folder of this computer, or one that is mounted, as a place to publish to. Jobs are done one after the
// other, in Wait. One thread.
#ifndef MOSAICON_MIRROR_FOLDER_STORE_H_
#define MOSAICON_MIRROR_FOLDER_STORE_H_

#include <deque>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "mirror/remote_store.h"

namespace mirror {

class FolderStore : public RemoteStore {
 public:
  explicit FolderStore(std::filesystem::path folder) : m_folder(std::move(folder)) {}

  void Start(std::uint64_t id, const RemoteJob& job) override { m_waiting.emplace_back(id, job); }
  std::vector<FinishedJob> Wait(std::chrono::milliseconds atMost) override;
  void Cancel() override { m_waiting.clear(); }
  void SetConnections(int /*count*/) override {}
  std::uint64_t BytesSent() const override { return m_bytes; }

 private:
  Outcome Do(const RemoteJob& job, std::vector<RemoteEntry>& entries);
  Outcome List(const std::filesystem::path& folder, std::vector<RemoteEntry>& entries) const;
  Outcome Send(const RemoteJob& job);
  std::filesystem::path PathOf(const std::string& path) const;

  std::filesystem::path m_folder;
  std::deque<std::pair<std::uint64_t, RemoteJob>> m_waiting;
  std::uint64_t m_bytes = 0;
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_FOLDER_STORE_H_
