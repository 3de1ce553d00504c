#include "net/chunk_sender.h"

#include <algorithm>

#include "net/error_codes.h"

namespace {

constexpr std::uint64_t kQuickMilliseconds = 50;

// The chunks that go out together. How many is found out: one at first, twice as many after every quick
// send, half as many after a slow one. None waits longer than a send may take.
class Batch {
 public:
  explicit Batch(SendSocket& socket) : m_socket(socket), m_nBegin(socket.Milliseconds()) {}

  // For the next chunk.
  char* Room() { return m_bytes + m_nSize; }
  void Add(size_t count) {
    m_nSize += count;
    ++m_nChunks;
  }

  bool IsDue() const {
    return m_nChunks >= m_nChunksAtOnce || m_socket.Milliseconds() - m_nBegin >= kQuickMilliseconds;
  }

  bool Send() {
    const std::uint64_t start = m_socket.Milliseconds();
    const bool isSent = m_nSize == 0 || m_socket.SendAll(m_bytes, static_cast<int>(m_nSize));
    m_nBegin = m_socket.Milliseconds();
    m_nChunksAtOnce = m_nBegin - start < kQuickMilliseconds ? std::min(m_nChunksAtOnce * 2, kMostChunksAtOnce)
                                                            : std::max<size_t>(m_nChunksAtOnce / 2, 1);
    m_nSize = m_nChunks = 0;
    return isSent;
  }

 private:
  SendSocket& m_socket;
  char m_bytes[kSendChunk * kMostChunksAtOnce];
  size_t m_nSize = 0;
  size_t m_nChunks = 0;
  size_t m_nChunksAtOnce = 1;
  std::uint64_t m_nBegin;  // of gathering
};

}  // namespace

int SendChunks(ByteStream& stream, SendSocket& socket) {
  Batch batch(socket);
  long long total = 0;
  for (;;) {
    const int count = stream.Read(batch.Room(), kSendChunk);
    if (count < 1) return batch.Send() ? kNetSuccess : kNetSendFailed;
    batch.Add(static_cast<size_t>(count));
    if (batch.IsDue() && !batch.Send()) return kNetSendFailed;
    total += count;
    if (!socket.GoesOn(total)) {
      batch.Send();
      return kNetAborted;
    }
  }
}
