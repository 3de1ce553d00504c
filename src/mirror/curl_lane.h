// One connection to a server, kept from job to job. Of its own down to the memory of TLS sessions: servers
// want a data connection to go on with the session of just its control connection, and curl remembers one for
// each handle. One thread.
#ifndef MOSAICON_MIRROR_CURL_LANE_H_
#define MOSAICON_MIRROR_CURL_LANE_H_

#include <curl/curl.h>

#include <memory>
#include <optional>
#include <vector>

#include "mirror/curl_job.h"

namespace mirror {

class CurlLane {
 public:
  CurlLane();
  ~CurlLane();
  CurlLane(const CurlLane&) = delete;
  CurlLane& operator=(const CurlLane&) = delete;

  bool IsFree() const { return m_job == nullptr; }
  // Whether a job came to a good end here, so that there is a connection.
  bool HasWorked() const { return m_hasWorked; }

  // On a free lane.
  void Enter(CurlSession& session);
  void Start(CurlSession& session, std::uint64_t id, const RemoteJob& job);
  void Cancel();

  // Goes on with what can be done without waiting. Returns the job when it has finished.
  std::optional<FinishedJob> Go();
  // What to wait for, until Go has something to do; at most so long.
  void AddSockets(std::vector<curl_waitfd>& sockets) const;
  long MillisecondsToWait() const;
  CURLM* Multi() const { return m_multi.get(); }

 private:
  struct MultiDeleter {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };
  struct HandleDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
  };
  void Add(std::unique_ptr<CurlJob> job);

  std::unique_ptr<CURLM, MultiDeleter> m_multi;
  std::unique_ptr<CURL, HandleDeleter> m_handle;
  std::unique_ptr<CurlJob> m_job;
  bool m_hasWorked = false;
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_CURL_LANE_H_
