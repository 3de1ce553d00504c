// CUT_WSClient: sending.
#include <algorithm>
#include <climits>
#include <cstring>

#include "net/error_codes.h"
#include "net/file_data_source.h"
#include "net/source_bytes.h"
#include "net/ws_client.h"

namespace {

constexpr size_t kSendChunk = 255;

int LengthOrTextLength(const char* buffer, int length) {
  if (length > 0) return length;
  return static_cast<int>(strnlen(buffer, INT_MAX));
}

}  // namespace

int CUT_WSClient::Send(const char* buffer, int length) {
  if (buffer == nullptr) return 0;
  const int all = LengthOrTextLength(buffer, length);
  int sent = SendRaw(m_socket, buffer, all, 0);
  // A socket that would rather block than take more is waited for here, where the listener has its turns.
  if (sent == SOCKET_ERROR && GetWaitListener() != nullptr && WSAGetLastError() == WSAEWOULDBLOCK &&
      WaitForSocket(m_socket, SocketEvent::kWritable, m_nSendTimeout / 1000, m_nSendTimeout % 1000 * 1000,
                    GetWaitListener())) {
    sent = SendRaw(m_socket, buffer, all, 0);
  }
  return std::max(sent, 0);
}

int CUT_WSClient::SendAll(const char* buffer, int length) {
  if (buffer == nullptr) return 0;
  const int all = LengthOrTextLength(buffer, length);
  int sent = 0;
  while (sent < all) {
    const int now = Send(buffer + sent, all - sent);
    if (now < 1) break;
    sent += now;
  }
  return sent;
}

int CUT_WSClient::SendInLines(const char* buffer, int length, int lineLength) {
  if (buffer == nullptr || lineLength < 1) return 0;
  const int all = length < 0 ? LengthOrTextLength(buffer, 0) : length;
  int sent = 0;
  while (sent < all && !IsAborted()) {
    const int piece = std::min(lineLength, all - sent);
    const int now = SendAll(buffer + sent, piece);
    sent += now;
    if (now < piece || SendAll("\r\n", 2) < 2) break;
  }
  return sent;
}

int CUT_WSClient::SendBytes(ByteStream& bytes) {
  char chunk[kSendChunk];
  long long total = 0;
  for (;;) {
    const int count = bytes.Read(chunk, sizeof chunk);
    if (count < 1) return kNetSuccess;
    // All of the chunk: a connection that took a part of it would otherwise lose the rest.
    if (SendAll(chunk, count) < count) return kNetSendFailed;
    total += count;
    if (OnSendProgress(static_cast<long>(std::min<long long>(total, LONG_MAX))) == 0) return kNetAborted;
    if (IsAborted()) return kNetAborted;
  }
}

int CUT_WSClient::SendFromStream(ByteStream& stream) {
  if (m_socket == INVALID_SOCKET) return OnError(kNetSocketNotOpen);
  return OnError(SendBytes(stream));
}

int CUT_WSClient::SendFromSource(CUT_DataSource& source) {
  if (m_socket == INVALID_SOCKET) return OnError(kNetSocketNotOpen);
  SourceBytes bytes(source, kSourceRead);
  if (!bytes.IsOpen()) return OnError(kNetSourceNotOpened);
  return OnError(SendBytes(bytes));
}

int CUT_WSClient::SendFileByName(const char* fileName) {
  CUT_FileDataSource source(fileName, kLineBufferSize);
  return SendFromSource(source);
}

int CUT_WSClient::SendDatagram(const char* buffer, int& length) {
  if (m_socket == INVALID_SOCKET) return OnError(kNetSocketNotOpen);
  if (buffer == nullptr) return OnError(kNetNullBuffer);
  const int sent =
      sendto(m_socket, buffer, length, 0, reinterpret_cast<const sockaddr*>(&m_remote), sizeof m_remote);
  length = std::max(sent, 0);
  return OnError(sent >= 0 ? kNetSuccess : kNetSendFailed);
}

int CUT_WSClient::WaitWritable(long seconds, long microseconds) {
  return WaitForSocket(m_socket, SocketEvent::kWritable, seconds, microseconds, GetWaitListener()) ? 0 : 1;
}
