#include "net/ws_client.h"

#include "net/error_codes.h"

namespace {

// An error of the selection that says that there is no socket to ask.
bool MeansNoSocket(int error) {
  return error == WSAENOTSOCK || error == WSAENETDOWN || error == WSANOTINITIALISED;
}

// What a peek must not fail with. It may find nothing (WSAEWOULDBLOCK) or be busy (WSAEINPROGRESS).
bool MeansNoConnection(int error) {
  switch (error) {
    case WSAECONNABORTED:
    case WSAECONNRESET:
    case WSAEINTR:
    case WSAEFAULT:
    case WSAEINVAL:
    case WSAENOTSOCK:
    case WSAEMSGSIZE:
    case WSAEOPNOTSUPP:
    case WSAENETDOWN:
    case WSAENETRESET:
    case WSAEISCONN:
    case WSAESHUTDOWN:
    case WSAETIMEDOUT:
      return true;
    default:
      return false;
  }
}

bool SetTimeOption(SOCKET socket, int option, std::int32_t milliseconds) {
  return setsockopt(socket, SOL_SOCKET, option, reinterpret_cast<const char*>(&milliseconds),
                    sizeof milliseconds) == 0;
}

}  // namespace

CUT_WSClient::CUT_WSClient() {
  if (!StartWinsock(m_winsock)) m_bStarted = 0;
  // Refused, because nothing is open yet: every opening applies them again.
  SetReceiveTimeout(m_nReceiveTimeout);
  SetSendTimeout(m_nSendTimeout);
}

CUT_WSClient::~CUT_WSClient() {
  CUT_WSClient::CloseConnection();
  // A stop without a start would take that of another client away.
  if (m_bStarted != 0) StopWinsock();
  if (m_hNotifyWindow != nullptr) DestroyWindow(m_hNotifyWindow);
}

int CUT_WSClient::CloseConnection() {
  const int connected = CloseSocket(m_socket, m_nType == SOCK_STREAM);
  const int listening = CloseSocket(m_listeningSocket, true);
  m_bNonBlocking = 0;
  m_nRemotePort = m_nLocalPort = m_nListeningPort = 0;
  m_szRemoteAddress[0] = '\0';
  return OnError(connected == kNetSuccess && listening == kNetSuccess ? kNetSuccess : kNetFailed);
}

// Marks the socket closed whatever happens.
int CUT_WSClient::CloseSocket(SOCKET& socket, bool shutDown) {
  if (socket == INVALID_SOCKET) return kNetSuccess;
  const bool isShutDown = !shutDown || ShutdownSocket(socket, SD_BOTH) == 0;
  const bool isClosed = CloseSocketHandle(socket) == 0;
  socket = INVALID_SOCKET;
  return isShutDown && isClosed ? kNetSuccess : kNetFailed;
}

int CUT_WSClient::SetReceiveTimeout(std::int32_t milliseconds) {
  if (!SetTimeOption(m_socket, SO_RCVTIMEO, milliseconds)) return OnError(kNetFailed);
  m_nReceiveTimeout = milliseconds;
  return OnError(kNetSuccess);
}

int CUT_WSClient::SetSendTimeout(std::int32_t milliseconds) {
  if (!SetTimeOption(m_socket, SO_SNDTIMEO, milliseconds)) return OnError(kNetFailed);
  m_nSendTimeout = milliseconds;
  return OnError(kNetSuccess);
}

void CUT_WSClient::PresetTimeouts(std::int32_t receiveMilliseconds, std::int32_t sendMilliseconds) {
  m_nReceiveTimeout = receiveMilliseconds;
  m_nSendTimeout = sendMilliseconds;
}

int CUT_WSClient::ApplyTimeouts(SOCKET socket) {
  const bool receive = SetTimeOption(socket, SO_RCVTIMEO, m_nReceiveTimeout);
  const bool send = SetTimeOption(socket, SO_SNDTIMEO, m_nSendTimeout);
  return OnError(receive && send ? kNetSuccess : kNetFailed);
}

int CUT_WSClient::SetBlockingMode(std::int32_t nonBlocking) {
  u_long mode = nonBlocking != 0 ? 1 : 0;
  if (ioctlsocket(m_socket, static_cast<long>(FIONBIO), &mode) != 0) return OnError(kNetFailed);
  m_bNonBlocking = static_cast<std::int32_t>(mode);
  return OnError(kNetSuccess);
}

bool CUT_WSClient::IsConnected() {
  fd_set sockets;
  FD_ZERO(&sockets);
  FD_SET(m_socket, &sockets);
  timeval now = {0, 0};
  const int readable = select(0, &sockets, nullptr, nullptr, &now);
  if (readable == SOCKET_ERROR && MeansNoSocket(WSAGetLastError())) return false;

  SetBlockingMode(1);
  char byte = 0;
  const int peeked = RecvRaw(m_socket, &byte, 1, MSG_PEEK);
  const int error = peeked == SOCKET_ERROR ? WSAGetLastError() : 0;
  SetBlockingMode(0);
  if (peeked == SOCKET_ERROR) return !MeansNoConnection(error);
  return readable <= 0 || peeked != 0;
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
