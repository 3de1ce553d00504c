// Receives into a stream. The bytes are written, counted and reported chunk by chunk, and come in with
// few receives, for a receive costs the same for one byte as for many thousands. Portable: the socket is
// an interface; one thread at a time.
#ifndef MOSAICON_NET_CHUNK_RECEIVER_H_
#define MOSAICON_NET_CHUNK_RECEIVER_H_

#include "net/byte_stream.h"
#include "net/peek_socket.h"

inline constexpr int kReceiveChunk = 256;
inline constexpr int kReceiveBlock = 65536;

class ReceiveSocket : public PeekSocket {
 public:
  // Asked after every chunk, with the bytes so far: false aborts.
  virtual bool GoesOn(long long bytes) = 0;
};

// Until the other side closes or maximum bytes have come (0 or less: no limit). Waits for up to seconds
// whenever nothing has arrived; 0 and below: the receive itself waits. kNetSuccess, kNetTimedOut,
// kNetReceiveFailed, kNetSourceNotWritten or kNetAborted.
//
// Only chunks that the stream was offered are taken from the socket; everything else can still be
// received from it.
int ReceiveChunks(ReceiveSocket& socket, ByteStream& stream, long seconds, long maximum);

#endif  // MOSAICON_NET_CHUNK_RECEIVER_H_
