#include "publish/ftp_upload_client.h"

#include "net/timeout_clock.h"

namespace {

constexpr std::uint64_t kPumpMilliseconds = 20;
// Of silence after an abort. A transfer that was cut short is answered when the server has received what
// was on its way, and the answer takes the way back.
constexpr std::uint64_t kAnswerMilliseconds = 4000;
constexpr std::uint64_t kGoodbyeMilliseconds = 1000;

}  // namespace

CFtpUploadClient::CFtpUploadClient(PublishHost& host) : m_host(host) {
  // Servers behind address translation name an address that nobody else can reach.
  SetPassiveToControlAddress(true);
  SetWaitListener(this);
}

// The base class says goodbye when nobody can listen any more.
CFtpUploadClient::~CFtpUploadClient() {
  SetWaitListener(nullptr);
}

// Asked between chunks and between lines of a listing, which may come by the thousand.
int CFtpUploadClient::IsAborted() {
  PumpNowAndThen();
  return IsStopAsked() ? 1 : 0;
}

// The result of an operation: what comes next may take its own time.
int CFtpUploadClient::OnError(int code) {
  m_nSilentSince = 0;
  return CUT_FTPClient::OnError(code);
}

// Every abort has its own time to wait for an answer.
bool CFtpUploadClient::IsStopAsked() {
  const bool isAsked = m_host.IsAborted();
  if (!isAsked) m_nSilentSince = 0;
  return isAsked;
}

void CFtpUploadClient::Reset() {
  m_bGivenUp = false;
}

bool CFtpUploadClient::OnWait() {
  m_nLastPump = SystemTicks();
  m_host.PumpMessages();
  if (!IsStopAsked()) return true;
  const std::uint64_t now = TimeoutClock();
  if (m_nSilentSince == 0) m_nSilentSince = now;
  if (now - m_nSilentSince < (m_host.IsLeaving() ? kGoodbyeMilliseconds : kAnswerMilliseconds)) return true;
  m_bGivenUp = true;
  return false;
}

void CFtpUploadClient::PumpNowAndThen() {
  const std::uint64_t now = SystemTicks();
  if (now - m_nLastPump < kPumpMilliseconds) return;
  m_nLastPump = now;
  m_host.PumpMessages();
}
