// CUT_WSClient: how a socket comes to be connected, by us or by the other side.
#include <cstring>

#include "net/error_codes.h"
#include "net/net_text.h"
#include "net/ws_client.h"

namespace {

constexpr char kAnyAddress[] = "0.0.0.0";

sockaddr_in AddressRecord(int family, u_long address, std::uint16_t port) {
  sockaddr_in record = {};
  record.sin_family = static_cast<short>(family);
  record.sin_addr.s_addr = address;
  record.sin_port = htons(port);
  return record;
}

const sockaddr* Generic(const sockaddr_in& record) {
  return reinterpret_cast<const sockaddr*>(&record);
}

// The local end of a socket; port 0 when it has none.
sockaddr_in LocalEnd(SOCKET socket) {
  sockaddr_in end = {};
  int size = sizeof end;
  if (getsockname(socket, reinterpret_cast<sockaddr*>(&end), &size) != 0) return {};
  return end;
}

}  // namespace

int CUT_WSClient::LookUpAddress(const char* name, char* address, size_t size) {
  if (name == nullptr || address == nullptr) return OnError(kNetNullBuffer);
  const char* const at = std::strrchr(name, '@');
  if (at != nullptr && at != name) name = at + 1;
  // The empty name would be this machine's.
  const hostent* const host = *name != '\0' ? gethostbyname(name) : nullptr;
  if (host == nullptr || host->h_addr_list[0] == nullptr) return OnError(kNetLookupFailed);
  in_addr first = {};
  std::memcpy(&first, host->h_addr_list[0], sizeof first);
  const char* const text = inet_ntoa(first);
  if (text == nullptr) return OnError(kNetLookupFailed);
  const size_t length = std::strlen(text);
  if (length >= size) return OnError(kNetBufferTooShort);
  std::memcpy(address, text, length + 1);
  return OnError(kNetSuccess);
}

bool CUT_WSClient::FindRemoteAddress(const char* address, sockaddr_in& remote) {
  if (address == nullptr) return false;
  remote.sin_addr.s_addr = inet_addr(address);
  if (remote.sin_addr.s_addr != INADDR_NONE) {
    CopyCut(address, m_szRemoteAddress);
    return true;
  }
  if (LookUpAddress(address, m_szRemoteAddress, sizeof m_szRemoteAddress) != kNetSuccess) return false;
  remote.sin_addr.s_addr = inet_addr(m_szRemoteAddress);
  return true;
}

int CUT_WSClient::CreateSocketHandle(SOCKET& socket, int family, int type, int protocol) {
  socket = ::socket(family, type, protocol);
  return OnError(socket != INVALID_SOCKET ? kNetSuccess : kNetFailed);
}

int CUT_WSClient::Connect(std::uint16_t port, const char* address, long timeout, int family, int type) {
  if (m_socket != INVALID_SOCKET) return OnError(kNetSocketAlreadyOpen);
  m_remote = AddressRecord(family, INADDR_NONE, port);
  if (!FindRemoteAddress(address, m_remote)) return OnError(kNetBadAddress);
  m_nFamily = family;
  m_nType = type;
  if (CreateSocketHandle(m_socket, family, type, m_nProtocol) != kNetSuccess)
    return OnError(kNetSocketNotCreated);
  const int connected = ConnectWithin(timeout);
  if (connected != kNetSuccess) return connected;
  const int accepted = OnSocketConnected(m_socket, address);
  return accepted == kNetSuccess ? OnError(kNetSuccess) : CloseAfter(accepted);
}

int CUT_WSClient::ConnectWithin(long timeout) {
  const bool waits = timeout >= 0;
  if (waits) SetBlockingMode(1);
  if (connect(m_socket, Generic(m_remote), sizeof m_remote) == 0) {
    // The ports stay as they were. Only a socket without a connection gets here with a time-out.
    if (waits) SetBlockingMode(0);
    ApplyTimeouts(m_socket);
    return kNetSuccess;
  }
  if (WSAGetLastError() != WSAEWOULDBLOCK) return CloseAfter(kNetNotConnected);
  if (waits) {
    if (WaitWritable(timeout, 0) != 0) return CloseAfter(kNetConnectTimedOut);
    SetBlockingMode(0);
  }
  ApplyTimeouts(m_socket);
  StorePorts();
  return kNetSuccess;
}

// Closes the socket of an operation that failed. Returns the code.
int CUT_WSClient::CloseAfter(int code) {
  CloseSocket(m_socket, false);
  m_bNonBlocking = 0;
  return OnError(code);
}

void CUT_WSClient::StorePorts() {
  m_nRemotePort = ntohs(m_remote.sin_port);
  m_nLocalPort = ntohs(LocalEnd(m_socket).sin_port);
}

// Whoever connected to us or sent to us.
void CUT_WSClient::SetRemote(const sockaddr_in& remote) {
  m_remote = remote;
  if (const char* address = inet_ntoa(remote.sin_addr)) CopyCut(address, m_szRemoteAddress);
  StorePorts();
}

std::string CUT_WSClient::RemoteIp() const {
  const char* const address = inet_ntoa(m_remote.sin_addr);
  return address != nullptr ? address : "";
}

bool CUT_WSClient::GetLocalAddress(char* text, size_t size) {
  const sockaddr_in end = LocalEnd(m_socket);
  const char* const address = inet_ntoa(end.sin_addr);
  if (end.sin_port == 0 || address == nullptr || std::strlen(address) >= size) return false;
  std::memcpy(text, address, std::strlen(address) + 1);
  return true;
}

int CUT_WSClient::ConnectBound(std::uint16_t localPort, std::uint16_t remotePort, const char* localAddress,
                               const char* remoteAddress, int family, int type) {
  if (m_socket != INVALID_SOCKET) return OnError(kNetSocketAlreadyOpen);
  if (remoteAddress == nullptr) return OnError(kNetBadAddress);
  CopyCut(remoteAddress, m_szRemoteAddress);
  m_nFamily = family;
  m_nType = type;
  if (CreateSocketHandle(m_socket, family, type, m_nProtocol) != kNetSuccess)
    return OnError(kNetSocketNotCreated);
  const char* const from = localAddress != nullptr ? localAddress : kAnyAddress;
  const sockaddr_in local = AddressRecord(family, inet_addr(from), localPort);
  if (bind(m_socket, Generic(local), sizeof local) != 0) return CloseAfter(kNetNotBound);
  m_remote = AddressRecord(family, inet_addr(remoteAddress), remotePort);
  if (connect(m_socket, Generic(m_remote), sizeof m_remote) != 0) return CloseAfter(kNetNotConnected);
  StorePorts();
  ApplyTimeouts(m_socket);
  return OnError(kNetSuccess);
}

int CUT_WSClient::OpenDatagram(std::uint16_t localPort, std::uint16_t remotePort, const char* remoteAddress,
                               const char* localAddress) {
  if (m_socket != INVALID_SOCKET) return OnError(kNetSocketAlreadyOpen);
  m_nFamily = AF_INET;
  m_nType = SOCK_DGRAM;
  if (CreateSocketHandle(m_socket, m_nFamily, m_nType, 0) != kNetSuccess)
    return OnError(kNetSocketNotCreated);
  const char* const from = localAddress != nullptr ? localAddress : kAnyAddress;
  const sockaddr_in local = AddressRecord(AF_INET, inet_addr(from), localPort);
  if (bind(m_socket, Generic(local), sizeof local) != 0) return CloseAfter(kNetNotBound);
  const char* const to = remoteAddress != nullptr ? remoteAddress : "";
  CopyCut(to, m_szRemoteAddress);
  m_remote = AddressRecord(AF_INET, *to != '\0' ? inet_addr(to) : INADDR_NONE, remotePort);
  StorePorts();
  ApplyTimeouts(m_socket);
  return OnError(kNetSuccess);
}

int CUT_WSClient::Listen(std::uint16_t port, int backlog, int family, u_long localAddress) {
  if (m_listeningSocket != INVALID_SOCKET) return OnError(kNetSocketAlreadyOpen);
  if (CreateSocketHandle(m_listeningSocket, family, SOCK_STREAM, m_nProtocol) != kNetSuccess)
    return OnError(kNetSocketNotCreated);
  m_nFamily = family;
  m_listening = AddressRecord(family, localAddress, port);
  const bool isBound = bind(m_listeningSocket, Generic(m_listening), sizeof m_listening) == 0;
  if (!isBound || listen(m_listeningSocket, backlog) != 0) {
    CloseSocket(m_listeningSocket, false);
    return OnError(isBound ? kNetListenFailed : kNetNotBound);
  }
  ApplyTimeouts(m_listeningSocket);
  m_nListeningPort = ntohs(LocalEnd(m_listeningSocket).sin_port);
  return OnError(kNetSuccess);
}

int CUT_WSClient::WaitForAccept(long seconds) {
  return WaitReadable(m_listeningSocket, seconds, 0);
}

int CUT_WSClient::AcceptConnection() {
  if (CloseSocket(m_socket, m_nType == SOCK_STREAM) != kNetSuccess) return OnError(kNetFailed);
  sockaddr_in peer = {};
  int size = sizeof peer;
  m_socket = accept(m_listeningSocket, reinterpret_cast<sockaddr*>(&peer), &size);
  if (m_socket == INVALID_SOCKET) return OnError(kNetFailed);
  m_nType = SOCK_STREAM;
  m_bNonBlocking = 0;
  SetRemote(peer);
  // Not every system hands them down from the listening socket.
  ApplyTimeouts(m_socket);
  const int accepted = OnSocketConnected(m_socket, m_szRemoteAddress);
  return accepted == kNetSuccess ? OnError(kNetSuccess) : CloseAfter(accepted);
}
