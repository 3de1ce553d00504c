// CUT_WSClient: receiving.
#include <algorithm>
#include <climits>

#include "net/chunk_receiver.h"
#include "net/error_codes.h"
#include "net/file_data_source.h"
#include "net/line_reader.h"
#include "net/source_bytes.h"
#include "net/timeout_clock.h"
#include "net/ws_client.h"

namespace {

// 1 MiB: a peer that sends for ever must not keep us.
constexpr int kMaxDrainedChunks = 4096;

}  // namespace

// The connected socket, behind an interface that is a PeekSocket and more.
template <class Interface>
class CUT_WSClient::Peeking : public Interface {
 public:
  explicit Peeking(CUT_WSClient& client) : m_client(client) {}

  bool WaitForData(long seconds) override { return m_client.WaitForReceive(seconds, 0) == 0; }
  int Peek(char* buffer, int count) override {
    if (!m_client.WaitWithListener()) return -1;
    return m_client.RecvRaw(m_client.m_socket, buffer, count, kPeekFlag);
  }
  int Take(char* buffer, int count) override { return m_client.RecvRaw(m_client.m_socket, buffer, count, 0); }

 protected:
  CUT_WSClient& m_client;
};

class CUT_WSClient::Lines : public Peeking<LineSocket> {
 public:
  // An abort counts once the deadline has passed.
  Lines(CUT_WSClient& client, std::uint64_t deadline) : Peeking(client), m_nDeadline(deadline) {}

  bool IsAborted() override {
    const std::uint64_t lineDeadline = m_client.m_nLineDeadline;
    if (lineDeadline != 0 && TimeoutClock() >= lineDeadline) return true;
    return m_client.IsAborted() && TimeoutClock() >= m_nDeadline;
  }

 private:
  std::uint64_t m_nDeadline;
};

class CUT_WSClient::ReceivedChunks : public Peeking<ReceiveSocket> {
 public:
  using Peeking::Peeking;

  bool GoesOn(long long bytes) override {
    return m_client.OnReceiveProgress(static_cast<long>(std::min<long long>(bytes, LONG_MAX))) != 0 &&
           !m_client.IsAborted();
  }
};

int CUT_WSClient::ReceiveLine(char* buffer, size_t size, long seconds) {
  Lines lines(*this, 0);
  return ReadLineFrom(lines, buffer, size, seconds);
}

int CUT_WSClient::ReceiveLineDespiteAbort(char* buffer, size_t size, long seconds, std::uint64_t deadline) {
  Lines lines(*this, deadline);
  return ReadLineFrom(lines, buffer, size, seconds);
}

int CUT_WSClient::WaitReadable(SocketHandle socket, long seconds, long microseconds) {
  return WaitForSocket(socket, SocketEvent::kReadable, seconds, microseconds, m_pWaitListener) ? 0 : 1;
}

int CUT_WSClient::WaitForReceive(long seconds, long microseconds) {
  return WaitReadable(m_socket, seconds, microseconds);
}

int CUT_WSClient::Receive(char* buffer, int length, long seconds) {
  if (seconds > 0 && WaitForReceive(seconds, 0) != 0) return 0;
  if (!WaitWithListener()) return -1;
  return RecvRaw(m_socket, buffer, length, 0);
}

// A receive would block for as long as the receive time-out, and the listener with it.
bool CUT_WSClient::WaitWithListener() {
  return GetWaitListener() == nullptr ||
         WaitForSocket(m_socket, SocketEvent::kReadable, m_nReceiveTimeout / 1000,
                       long{m_nReceiveTimeout} % 1000 * 1000, GetWaitListener());
}

int CUT_WSClient::ReceiveAll(char* buffer, int length, long seconds) {
  int received = 0;
  while (received < length) {
    const int now = Receive(buffer + received, length - received, seconds);
    // 0 is the end, too: a closed connection would be asked for ever.
    if (now < 1) break;
    received += now;
  }
  return received;
}

int CUT_WSClient::ReceiveBytes(ByteStream& bytes, long seconds, long maximum) {
  ReceivedChunks chunks(*this);
  return ReceiveChunks(chunks, bytes, seconds, maximum);
}

int CUT_WSClient::ReceiveToStream(ByteStream& stream, long seconds, long maximum) {
  if (m_socket == kNoSocket) return OnError(kNetSocketNotOpen);
  return OnError(ReceiveBytes(stream, seconds, maximum > 0 ? maximum : stream.GetLength()));
}

int CUT_WSClient::ReceiveToSource(CUT_DataSource& source, int mode, long seconds, long maximum) {
  if (m_socket == kNoSocket) return OnError(kNetSocketNotOpen);
  if (mode != kSourceWrite && mode != kSourceAppend) return OnError(kNetBadMode);
  SourceBytes bytes(source, mode);
  if (!bytes.IsOpen()) return OnError(kNetSourceNotOpened);
  return OnError(ReceiveBytes(bytes, seconds, maximum));
}

int CUT_WSClient::ReceiveFileByName(const char* fileName, int mode, long seconds) {
  CUT_FileDataSource source(fileName, kLineBufferSize);
  return ReceiveToSource(source, mode, seconds, 0);
}

int CUT_WSClient::DrainInput() {
  char chunk[kReceiveChunk];
  for (int i = 0; i < kMaxDrainedChunks && HasPendingData(m_socket); ++i) {
    if (Receive(chunk, sizeof chunk, 0) < 1) break;
  }
  return OnError(kNetSuccess);
}

int CUT_WSClient::ReceiveDatagram(char* buffer, int& length, long seconds) {
  if (m_socket == kNoSocket) return OnError(kNetSocketNotOpen);
  if (buffer == nullptr) return OnError(kNetNullBuffer);
  if (seconds > 0 && WaitForReceive(seconds, 0) != 0) return OnError(kNetTimedOut);
  SocketAddress sender;
  const int received = ReceiveDatagramFrom(m_socket, buffer, length, sender);
  length = std::max(received, 0);
  if (received < 0) return OnError(kNetReceiveFailed);
  SetRemote(sender);
  return OnError(kNetSuccess);
}
