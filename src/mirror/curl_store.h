// A folder on a server that speaks FTP, FTP over TLS or SFTP, by way of libcurl. Connections are kept and
// used again; nothing here blocks but for a name that is looked up.
//
// The first job of all gets in first; what keeps one out is its outcome then. One thread.
#ifndef MOSAICON_MIRROR_CURL_STORE_H_
#define MOSAICON_MIRROR_CURL_STORE_H_

#include <algorithm>
#include <chrono>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mirror/curl_lane.h"

namespace mirror {

class CurlStore : public RemoteStore {
 public:
  // The address is none of a file.
  CurlStore(const PublishAddress& address, const ServerAccess& access);
  CurlStore(const CurlStore&) = delete;
  CurlStore& operator=(const CurlStore&) = delete;

  void Start(std::uint64_t id, const RemoteJob& job) override;
  std::vector<FinishedJob> Wait(std::chrono::milliseconds atMost) override;
  void Cancel() override;
  void SetConnections(int count) override { m_session.connections = std::max(count, 1); }
  std::uint64_t BytesSent() const override { return m_session.bytesSent; }

  // Whether nobody on the way can read along; so it is where nothing was said yet.
  bool IsEncrypted() const;
  // The fingerprint of a host that nobody knows yet, after it was refused for that.
  const std::string& UnknownHostKey() const { return m_session.unknownHostKey; }

 private:
  CurlLane* FreeLane();
  std::size_t Running() const;
  void StartWaiting();
  bool IsTooEarlyFor(const RemoteJob& job);
  void Go(std::vector<FinishedJob>& finished);
  void WaitForSockets(std::chrono::milliseconds atMost);

  CurlSession m_session;
  std::vector<std::unique_ptr<CurlLane>> m_lanes;
  std::deque<std::pair<std::uint64_t, RemoteJob>> m_waiting;
  bool m_isEntering = false;
  std::chrono::steady_clock::time_point m_nextSending;  // where the rate is limited
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_CURL_STORE_H_
