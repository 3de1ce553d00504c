#include "net/chunk_receiver.h"

#include <algorithm>
#include <cstddef>

#include "net/error_codes.h"

namespace {

class Receiver {
 public:
  Receiver(ReceiveSocket& socket, ByteStream& stream) : m_socket(socket), m_stream(stream) {}

  long long Total() const { return m_nTotal; }
  // The other side has closed.
  bool IsAtEnd() const { return m_bEnd; }

  // What has arrived, up to most bytes.
  int ReceiveBlock(long long most) {
    const int peeked = m_socket.Peek(m_block, static_cast<int>(std::min<long long>(most, kReceiveBlock)));
    if (peeked < 0) return kNetReceiveFailed;
    m_bEnd = peeked == 0;
    int offered = 0;
    const int code = HandOn(peeked, offered);
    const bool isTaken = Take(offered);
    return code == kNetSuccess && !isTaken ? kNetReceiveFailed : code;
  }

 private:
  // Chunk by chunk, until one cannot be written or is the last one wanted.
  int HandOn(int count, int& offered) {
    while (offered < count) {
      const int chunk = std::min(count - offered, kReceiveChunk);
      const int written = m_stream.Write(m_block + offered, static_cast<size_t>(chunk));
      offered += chunk;
      if (written < chunk) return kNetSourceNotWritten;
      m_nTotal += chunk;
      if (!m_socket.GoesOn(m_nTotal)) return kNetAborted;
    }
    return kNetSuccess;
  }

  // They are in the block already.
  bool Take(int count) {
    while (count > 0) {
      const int taken = m_socket.Take(m_block, count);
      if (taken < 1) return false;
      count -= taken;
    }
    return true;
  }

  ReceiveSocket& m_socket;
  ByteStream& m_stream;
  char m_block[kReceiveBlock];
  long long m_nTotal = 0;
  bool m_bEnd = false;
};

}  // namespace

int ReceiveChunks(ReceiveSocket& socket, ByteStream& stream, long seconds, long maximum) {
  Receiver receiver(socket, stream);
  while (!receiver.IsAtEnd()) {
    const long long left = maximum > 0 ? maximum - receiver.Total() : kReceiveBlock;
    if (left == 0) break;
    if (seconds > 0 && !socket.WaitForData(seconds)) return kNetTimedOut;
    if (const int failed = receiver.ReceiveBlock(left)) return failed;
  }
  return kNetSuccess;
}
