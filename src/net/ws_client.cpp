#include "net/ws_client.h"

#include "net/error_codes.h"

namespace {

// An error of the wait that says that there is no socket to ask.
bool MeansNoSocket(SocketError error) {
  return error == SocketError::kNotASocket || error == SocketError::kNetworkDown ||
         error == SocketError::kNotStarted;
}

// What a peek must not fail with. It may find nothing (kWouldBlock) or be busy (kInProgress).
bool MeansNoConnection(SocketError error) {
  switch (error) {
    case SocketError::kConnectionAborted:
    case SocketError::kConnectionReset:
    case SocketError::kInterrupted:
    case SocketError::kBadPointer:
    case SocketError::kBadArgument:
    case SocketError::kNotASocket:
    case SocketError::kMessageTooLong:
    case SocketError::kNotSupported:
    case SocketError::kNetworkDown:
    case SocketError::kNetworkReset:
    case SocketError::kAlreadyConnected:
    case SocketError::kShutDown:
    case SocketError::kTimedOut:
      return true;
    default:
      return false;
  }
}

}  // namespace

CUT_WSClient::CUT_WSClient() {
  if (StartSockets() == 0) m_bStarted = 0;
  // Refused, because nothing is open yet: every opening applies them again.
  SetReceiveTimeout(m_nReceiveTimeout);
  SetSendTimeout(m_nSendTimeout);
}

CUT_WSClient::~CUT_WSClient() {
  CUT_WSClient::CloseConnection();
  // A stop without a start would take that of another client away.
  if (m_bStarted != 0) StopSockets();
  DestroyNotifyWindow();
}

int CUT_WSClient::CloseConnection() {
  const int connected = CloseSocket(m_socket, m_nType == kStreamSocket);
  const int listening = CloseSocket(m_listeningSocket, true);
  m_bNonBlocking = 0;
  m_nRemotePort = m_nLocalPort = m_nListeningPort = 0;
  m_szRemoteAddress[0] = '\0';
  return OnError(connected == kNetSuccess && listening == kNetSuccess ? kNetSuccess : kNetFailed);
}

// Marks the socket closed whatever happens.
int CUT_WSClient::CloseSocket(SocketHandle& socket, bool shutDown) {
  if (socket == kNoSocket) return kNetSuccess;
  const bool isShutDown = !shutDown || ShutdownSocket(socket, kShutDownBoth) == 0;
  const bool isClosed = CloseSocketHandle(socket) == 0;
  socket = kNoSocket;
  return isShutDown && isClosed ? kNetSuccess : kNetFailed;
}

int CUT_WSClient::SetReceiveTimeout(std::int32_t milliseconds) {
  if (SetSystemSocketTimeout(m_socket, SocketDirection::kReceive, milliseconds) != 0)
    return OnError(kNetFailed);
  m_nReceiveTimeout = milliseconds;
  return OnError(kNetSuccess);
}

int CUT_WSClient::SetSendTimeout(std::int32_t milliseconds) {
  if (SetSystemSocketTimeout(m_socket, SocketDirection::kSend, milliseconds) != 0) return OnError(kNetFailed);
  m_nSendTimeout = milliseconds;
  return OnError(kNetSuccess);
}

void CUT_WSClient::PresetTimeouts(std::int32_t receiveMilliseconds, std::int32_t sendMilliseconds) {
  m_nReceiveTimeout = receiveMilliseconds;
  m_nSendTimeout = sendMilliseconds;
}

int CUT_WSClient::ApplyTimeouts(SocketHandle socket) {
  const bool receive = SetSystemSocketTimeout(socket, SocketDirection::kReceive, m_nReceiveTimeout) == 0;
  const bool send = SetSystemSocketTimeout(socket, SocketDirection::kSend, m_nSendTimeout) == 0;
  return OnError(receive && send ? kNetSuccess : kNetFailed);
}

int CUT_WSClient::SetBlockingMode(std::int32_t nonBlocking) {
  if (SetSystemSocketBlocking(m_socket, nonBlocking == 0) != 0) return OnError(kNetFailed);
  m_bNonBlocking = nonBlocking != 0 ? 1 : 0;
  return OnError(kNetSuccess);
}

bool CUT_WSClient::IsConnected() {
  const SocketWait readable = WaitForSystemSocket(m_socket, SocketEvent::kReadable, 0);
  if (readable == SocketWait::kNever && MeansNoSocket(LastSocketError())) return false;

  SetBlockingMode(1);
  char byte = 0;
  const int peeked = RecvRaw(m_socket, &byte, 1, kPeekFlag);
  const SocketError error = peeked < 0 ? LastSocketError() : SocketError::kNone;
  SetBlockingMode(0);
  if (peeked < 0) return !MeansNoConnection(error);
  return readable != SocketWait::kCame || peeked != 0;
}

int CUT_WSClient::OnError(int code) {
  return code;
}

int CUT_WSClient::OnReceiveProgress(long /*bytes*/) {
  return !IsAborted();
}

int CUT_WSClient::OnSendProgress(long /*bytes*/) {
  return !IsAborted();
}

int CUT_WSClient::IsAborted() {
  return 0;
}

void CUT_WSClient::OnNotification1(int /*low*/, int /*high*/) {}

void CUT_WSClient::OnNotification2(int /*high*/) {}

void CUT_WSClient::OnNotification3(int /*high*/) {}
