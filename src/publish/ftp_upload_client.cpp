#include "publish/ftp_upload_client.h"

namespace {

constexpr ULONGLONG kPumpMilliseconds = 20;
constexpr ULONGLONG kAnswerMilliseconds = 1000;

}  // namespace

CFtpUploadClient::CFtpUploadClient(PublishHost& host) : m_host(host) {
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

// Every abort has its own time to wait for an answer.
bool CFtpUploadClient::IsStopAsked() {
  const bool isAsked = m_host.IsAborted();
  if (!isAsked) m_nAbortedSince = 0;
  return isAsked;
}

void CFtpUploadClient::Reset() {
  m_bGivenUp = false;
}

bool CFtpUploadClient::OnWait() {
  m_nLastPump = GetTickCount64();
  m_host.PumpMessages();
  if (!IsStopAsked()) return true;
  const ULONGLONG now = GetTickCount64();
  if (m_nAbortedSince == 0) m_nAbortedSince = now;
  if (now - m_nAbortedSince < kAnswerMilliseconds) return true;
  m_bGivenUp = true;
  return false;
}

void CFtpUploadClient::PumpNowAndThen() {
  const ULONGLONG now = GetTickCount64();
  if (now - m_nLastPump < kPumpMilliseconds) return;
  m_nLastPump = now;
  m_host.PumpMessages();
}
