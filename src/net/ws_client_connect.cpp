// CUT_WSClient: how a socket comes to be connected, by us or by the other side.
#include <cstring>

#include "net/error_codes.h"
#include "net/net_text.h"
#include "net/ws_client.h"

namespace {

constexpr char kAnyAddress[] = "0.0.0.0";

}  // namespace

int CUT_WSClient::LookUpAddress(const char* name, char* address, size_t size) {
  if (name == nullptr || address == nullptr) return OnError(kNetNullBuffer);
  const char* const at = std::strrchr(name, '@');
  if (at != nullptr && at != name) name = at + 1;
  // The empty name would be this machine's.
  const std::uint32_t ip = *name != '\0' ? LookUpName(name) : kNoIp;
  if (ip == kNoIp) return OnError(kNetLookupFailed);
  return OnError(CopyWhole(DottedAddress(ip), address, size) ? kNetSuccess : kNetBufferTooShort);
}

bool CUT_WSClient::FindRemoteAddress(const char* address, SocketAddress& remote) {
  if (address == nullptr) return false;
  remote.ip = ParseDottedAddress(address);
  if (remote.ip != kNoIp) {
    CopyCut(address, m_szRemoteAddress);
    return true;
  }
  if (LookUpAddress(address, m_szRemoteAddress, sizeof m_szRemoteAddress) != kNetSuccess) return false;
  remote.ip = ParseDottedAddress(m_szRemoteAddress);
  return true;
}

int CUT_WSClient::CreateSocketHandle(SocketHandle& socket, int family, int type, int protocol) {
  socket = OpenSystemSocket(family, type, protocol);
  return OnError(socket != kNoSocket ? kNetSuccess : kNetFailed);
}

int CUT_WSClient::Connect(std::uint16_t port, const char* address, long timeout, int family, int type) {
  if (m_socket != kNoSocket) return OnError(kNetSocketAlreadyOpen);
  m_remote = {family, kNoIp, port};
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
  if (ConnectSystemSocket(m_socket, m_remote) == 0) {
    // The ports stay as they were. Only a socket without a connection gets here with a time-out.
    if (waits) SetBlockingMode(0);
    ApplyTimeouts(m_socket);
    return kNetSuccess;
  }
  if (LastSocketError() != SocketError::kWouldBlock) return CloseAfter(kNetNotConnected);
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
  m_nRemotePort = m_remote.port;
  m_nLocalPort = LocalEndOfSystemSocket(m_socket).port;
}

// Whoever connected to us or sent to us.
void CUT_WSClient::SetRemote(const SocketAddress& remote) {
  m_remote = remote;
  CopyCut(DottedAddress(remote.ip), m_szRemoteAddress);
  StorePorts();
}

std::string CUT_WSClient::RemoteIp() const {
  return DottedAddress(m_remote.ip);
}

bool CUT_WSClient::GetLocalAddress(char* text, size_t size) {
  const SocketAddress end = LocalEndOfSystemSocket(m_socket);
  return end.port != 0 && CopyWhole(DottedAddress(end.ip), text, size);
}

int CUT_WSClient::ConnectBound(std::uint16_t localPort, std::uint16_t remotePort, const char* localAddress,
                               const char* remoteAddress, int family, int type) {
  if (m_socket != kNoSocket) return OnError(kNetSocketAlreadyOpen);
  if (remoteAddress == nullptr) return OnError(kNetBadAddress);
  CopyCut(remoteAddress, m_szRemoteAddress);
  m_nFamily = family;
  m_nType = type;
  if (CreateSocketHandle(m_socket, family, type, m_nProtocol) != kNetSuccess)
    return OnError(kNetSocketNotCreated);
  const char* const from = localAddress != nullptr ? localAddress : kAnyAddress;
  const SocketAddress local = {family, ParseDottedAddress(from), localPort};
  if (BindSystemSocket(m_socket, local) != 0) return CloseAfter(kNetNotBound);
  m_remote = {family, ParseDottedAddress(remoteAddress), remotePort};
  if (ConnectSystemSocket(m_socket, m_remote) != 0) return CloseAfter(kNetNotConnected);
  StorePorts();
  ApplyTimeouts(m_socket);
  return OnError(kNetSuccess);
}

int CUT_WSClient::OpenDatagram(std::uint16_t localPort, std::uint16_t remotePort, const char* remoteAddress,
                               const char* localAddress) {
  if (m_socket != kNoSocket) return OnError(kNetSocketAlreadyOpen);
  m_nFamily = kInternetFamily;
  m_nType = kDatagramSocket;
  if (CreateSocketHandle(m_socket, m_nFamily, m_nType, 0) != kNetSuccess)
    return OnError(kNetSocketNotCreated);
  const char* const from = localAddress != nullptr ? localAddress : kAnyAddress;
  const SocketAddress local = {kInternetFamily, ParseDottedAddress(from), localPort};
  if (BindSystemSocket(m_socket, local) != 0) return CloseAfter(kNetNotBound);
  const char* const to = remoteAddress != nullptr ? remoteAddress : "";
  CopyCut(to, m_szRemoteAddress);
  m_remote = {kInternetFamily, *to != '\0' ? ParseDottedAddress(to) : kNoIp, remotePort};
  StorePorts();
  ApplyTimeouts(m_socket);
  return OnError(kNetSuccess);
}

int CUT_WSClient::Listen(std::uint16_t port, int backlog, int family, std::uint32_t localAddress) {
  if (m_listeningSocket != kNoSocket) return OnError(kNetSocketAlreadyOpen);
  if (CreateSocketHandle(m_listeningSocket, family, kStreamSocket, m_nProtocol) != kNetSuccess)
    return OnError(kNetSocketNotCreated);
  m_nFamily = family;
  m_listening = {family, localAddress, port};
  const bool isBound = BindSystemSocket(m_listeningSocket, m_listening) == 0;
  if (!isBound || ListenOnSystemSocket(m_listeningSocket, backlog) != 0) {
    CloseSocket(m_listeningSocket, false);
    return OnError(isBound ? kNetListenFailed : kNetNotBound);
  }
  ApplyTimeouts(m_listeningSocket);
  m_nListeningPort = LocalEndOfSystemSocket(m_listeningSocket).port;
  return OnError(kNetSuccess);
}

int CUT_WSClient::WaitForAccept(long seconds) {
  return WaitReadable(m_listeningSocket, seconds, 0);
}

int CUT_WSClient::AcceptConnection() {
  if (CloseSocket(m_socket, m_nType == kStreamSocket) != kNetSuccess) return OnError(kNetFailed);
  SocketAddress peer;
  m_socket = AcceptSystemSocket(m_listeningSocket, peer);
  if (m_socket == kNoSocket) return OnError(kNetFailed);
  m_nType = kStreamSocket;
  m_bNonBlocking = 0;
  SetRemote(peer);
  // Not every system hands them down from the listening socket.
  ApplyTimeouts(m_socket);
  const int accepted = OnSocketConnected(m_socket, m_szRemoteAddress);
  return accepted == kNetSuccess ? OnError(kNetSuccess) : CloseAfter(accepted);
}
