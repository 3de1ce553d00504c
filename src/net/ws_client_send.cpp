// CUT_WSClient: sending.
#include <algorithm>
#include <climits>
#include <cstring>

#include "net/chunk_sender.h"
#include "net/error_codes.h"
#include "net/file_data_source.h"
#include "net/source_bytes.h"
#include "net/ws_client.h"

namespace {

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
  if (sent < 0 && GetWaitListener() != nullptr && LastSocketError() == SocketError::kWouldBlock &&
      WaitForSocket(m_socket, SocketEvent::kWritable, m_nSendTimeout / 1000,
                    long{m_nSendTimeout} % 1000 * 1000, GetWaitListener())) {
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

class CUT_WSClient::SentChunks : public SendSocket {
 public:
  explicit SentChunks(CUT_WSClient& client) : m_client(client) {}

  bool SendAll(const char* bytes, int count) override { return m_client.SendAll(bytes, count) == count; }
  bool GoesOn(long long bytes) override {
    return m_client.OnSendProgress(static_cast<long>(std::min<long long>(bytes, LONG_MAX))) != 0 &&
           !m_client.IsAborted();
  }
  std::uint64_t Milliseconds() override { return SystemTicks(); }

 private:
  CUT_WSClient& m_client;
};

int CUT_WSClient::SendBytes(ByteStream& bytes) {
  SentChunks chunks(*this);
  return SendChunks(bytes, chunks);
}

int CUT_WSClient::SendFromStream(ByteStream& stream) {
  if (m_socket == kNoSocket) return OnError(kNetSocketNotOpen);
  return OnError(SendBytes(stream));
}

int CUT_WSClient::SendFromSource(CUT_DataSource& source) {
  if (m_socket == kNoSocket) return OnError(kNetSocketNotOpen);
  SourceBytes bytes(source, kSourceRead);
  if (!bytes.IsOpen()) return OnError(kNetSourceNotOpened);
  return OnError(SendBytes(bytes));
}

int CUT_WSClient::SendFileByName(const char* fileName) {
  CUT_FileDataSource source(fileName, kLineBufferSize);
  return SendFromSource(source);
}

int CUT_WSClient::SendDatagram(const char* buffer, int& length) {
  if (m_socket == kNoSocket) return OnError(kNetSocketNotOpen);
  if (buffer == nullptr) return OnError(kNetNullBuffer);
  const int sent = SendDatagramTo(m_socket, buffer, length, m_remote);
  length = std::max(sent, 0);
  return OnError(sent >= 0 ? kNetSuccess : kNetSendFailed);
}

int CUT_WSClient::WaitWritable(long seconds, long microseconds) {
  return WaitForSocket(m_socket, SocketEvent::kWritable, seconds, microseconds, GetWaitListener()) ? 0 : 1;
}
