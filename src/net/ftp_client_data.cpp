// CUT_FTPClient: the data connection, from its offer to the final reply.
#include <algorithm>
#include <cstring>

#include "net/error_codes.h"
#include "net/ftp_client.h"
#include "net/ftp_client_rules.h"
#include "net/ftp_pasv.h"
#include "net/timeout_clock.h"

namespace {

constexpr int kPortTries = 128;
constexpr int kAddressSize = 32;
constexpr int kPassiveTextSize = 100;
constexpr long kAcceptSeconds = 5;

}  // namespace

int CUT_FTPClient::ListenOnDataPort(int noPortCode) {
  for (int i = 0; i < kPortTries; ++i) {
    if (m_data.Listen(static_cast<std::uint16_t>(m_nNextDataPort), 1) == kNetSuccess) return kNetSuccess;
    ++m_nNextDataPort;
  }
  return noPortCode;
}

// Listens, and tells the server where.
int CUT_FTPClient::OfferDataPort(int noPortCode) {
  const int failed = ListenOnDataPort(noPortCode);
  const std::int32_t port = m_nNextDataPort;
  if (failed == kNetSuccess) ++m_nNextDataPort;
  if (m_nNextDataPort > kHighestDataPort) m_nNextDataPort = kLowestDataPort;
  if (failed != kNetSuccess) return failed;

  char address[kAddressSize] = "";
  GetLocalAddress(address, sizeof address);
  std::replace(address, address + std::strlen(address), '.', ',');
  char command[kFtpLineSize];
  FormatCommand(command, "PORT %s,%d,%d\r\n", address, static_cast<int>(port / 256),
                static_cast<int>(port % 256));
  return CloseDataAfter(CheckLastReply(Ask(command), 200, 299, kNetPortFailed));
}

// Closes the data connection if code is a failure. Returns the code.
int CUT_FTPClient::CloseDataAfter(int code) {
  if (code != kNetSuccess) m_data.CloseConnection();
  return code;
}

int CUT_FTPClient::AcceptData(long seconds) {
  if (AcceptServer(seconds) && PrepareData() == kNetSuccess) return kNetSuccess;
  m_data.CloseConnection();
  // The server may have said why it does not come.
  m_nLateReplyWait = SkipToFinalReply(0) ? -1 : kLateReplySeconds;
  DrainInput();
  return AfterWait(kNetDataConnectionFailed);
}

// Anybody can come to an open port, and would get the file or choose what we receive. Whoever does not
// come from the server's address is sent away, and the server waited for as long as before.
bool CUT_FTPClient::AcceptServer(long seconds) {
  const std::uint64_t start = TimeoutClock();
  for (long left = seconds; left > 0; left = seconds - static_cast<long>((TimeoutClock() - start) / 1000)) {
    if (m_data.WaitForAccept(left) != 0 || m_data.AcceptConnection() != kNetSuccess) return false;
    if (m_data.RemoteIp() == RemoteIp()) return true;
    m_data.CloseAccepted();
  }
  return false;
}

// With somebody who listens to its waits, a transfer must not block instead.
int CUT_FTPClient::PrepareData() {
  return GetWaitListener() != nullptr ? m_data.SetBlockingMode(1) : kNetSuccess;
}

// What an abort has cut short did not fail by itself.
int CUT_FTPClient::AfterWait(int code) {
  switch (code) {
    case kNetConnectTimedOut:
    case kNetDataConnectionFailed:
    case kNetTimedOut:
    case kNetReceiveFailed:
    case kNetSendFailed:
      return IsAborted() ? kNetAborted : code;
    default:
      return code;
  }
}

int CUT_FTPClient::StartActive(const char* command, int refusedCode) {
  const int failed = CheckReply(Ask(command), 100, 299, refusedCode);
  if (failed != kNetSuccess) return CloseDataAfter(failed);
  return AcceptData(kAcceptSeconds);
}

int CUT_FTPClient::FindPassivePort(int noBracketCode, int badPortCode, DataAddress& target) {
  char text[kPassiveTextSize] = "";
  const int failed = CheckLastReply(Ask("PASV\r\n", text, sizeof text), 200, 299, kNetPortFailed);
  if (failed != kNetSuccess) return failed;
  const PasvResult reply = ParsePasvReply(text);
  if (!reply.hasBracket) return noBracketCode;
  if (!IsServerAddress(reply.address)) return kNetDataConnectionFailed;
  if (!IsPort(reply.port)) return badPortCode;
  target.address = m_bPassiveToControl != 0 ? RemoteIp() : reply.address;
  target.port = static_cast<std::uint16_t>(reply.port);
  return kNetSuccess;
}

// The command goes first: servers wait for the connection before they answer it.
int CUT_FTPClient::ConnectData(const char* command, int refusedCode, const DataAddress& target) {
  SendCommand(command);
  int connected = m_data.Connect(target.port, target.address.c_str(), m_nConnectTimeout);
  if (connected == kNetSuccess) connected = PrepareData();
  if (connected != kNetSuccess) {
    m_nLateReplyWait = kLateReplySeconds;
    return CloseDataAfter(AfterWait(connected));
  }
  return CloseDataAfter(CheckReply(GetResponseCode(*this), 100, 299, refusedCode));
}

// The final reply is read whatever happened, so that commands and replies stay in step.
int CUT_FTPClient::FinishTransfer(int code) {
  m_data.CloseConnection();
  code = AfterWait(code);
  const int judged = CheckLastReply(GetResponseCode(*this), 200, 299, kNetTerminated);
  return code != kNetSuccess ? code : judged;
}
