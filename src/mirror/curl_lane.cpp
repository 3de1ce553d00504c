#include "mirror/curl_lane.h"

#include <new>
#include <utility>

namespace mirror {

CurlLane::CurlLane() : m_multi(curl_multi_init()), m_handle(curl_easy_init()) {
  if (!m_multi || !m_handle) throw std::bad_alloc();
  curl_multi_setopt(m_multi.get(), CURLMOPT_MAX_HOST_CONNECTIONS, 1L);
  curl_multi_setopt(m_multi.get(), CURLMOPT_MAXCONNECTS, 1L);
}

CurlLane::~CurlLane() {
  Cancel();
}

void CurlLane::Enter(CurlSession& session) {
  Add(CurlJob::Enter(session, m_handle.get()));
}

void CurlLane::Start(CurlSession& session, std::uint64_t id, const RemoteJob& job) {
  Add(std::make_unique<CurlJob>(session, m_handle.get(), id, job));
}

void CurlLane::Add(std::unique_ptr<CurlJob> job) {
  m_job = std::move(job);
  curl_multi_add_handle(m_multi.get(), m_handle.get());
}

void CurlLane::Cancel() {
  if (IsFree()) return;
  curl_multi_remove_handle(m_multi.get(), m_handle.get());
  m_job.reset();
}

std::optional<FinishedJob> CurlLane::Go() {
  if (IsFree()) return std::nullopt;
  int running = 0;
  curl_multi_perform(m_multi.get(), &running);
  int left = 0;
  const CURLMsg* message = curl_multi_info_read(m_multi.get(), &left);
  if (message == nullptr || message->msg != CURLMSG_DONE) return std::nullopt;
  const CURLcode code = message->data.result;
  curl_multi_remove_handle(m_multi.get(), m_handle.get());
  FinishedJob finished = m_job->Finish(code);
  if (finished.outcome.fault != Fault::kNone && m_job->HasOtherWay(finished.outcome)) {
    m_job->TakeOtherWay();
    curl_multi_add_handle(m_multi.get(), m_handle.get());
    return std::nullopt;
  }
  m_hasWorked |= finished.outcome.fault == Fault::kNone;
  m_job.reset();
  return finished;
}

void CurlLane::AddSockets(std::vector<curl_waitfd>& sockets) const {
  if (IsFree()) return;
  fd_set reading;
  fd_set writing;
  fd_set failing;
  FD_ZERO(&reading);
  FD_ZERO(&writing);
  FD_ZERO(&failing);
  int highest = -1;
  curl_multi_fdset(m_multi.get(), &reading, &writing, &failing, &highest);
#ifdef _WIN32
  for (u_int i = 0; i < reading.fd_count; ++i) sockets.push_back({reading.fd_array[i], CURL_WAIT_POLLIN, 0});
  for (u_int i = 0; i < writing.fd_count; ++i) sockets.push_back({writing.fd_array[i], CURL_WAIT_POLLOUT, 0});
#else
  for (int socket = 0; socket <= highest; ++socket) {
    if (FD_ISSET(socket, &reading)) sockets.push_back({socket, CURL_WAIT_POLLIN, 0});
    if (FD_ISSET(socket, &writing)) sockets.push_back({socket, CURL_WAIT_POLLOUT, 0});
  }
#endif
}

long CurlLane::MillisecondsToWait() const {
  constexpr long kAnyTime = 1000;
  long milliseconds = -1;
  if (!IsFree()) curl_multi_timeout(m_multi.get(), &milliseconds);
  return milliseconds < 0 ? kAnyTime : milliseconds;
}

}  // namespace mirror
