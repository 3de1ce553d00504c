// Sends a whole stream. It is read, counted and reported chunk by chunk, and several chunks go out with
// one send, for a send costs the same for one byte as for many thousands. Portable: the socket is an
// interface; one thread at a time.
#ifndef MOSAICON_NET_CHUNK_SENDER_H_
#define MOSAICON_NET_CHUNK_SENDER_H_

#include <cstddef>
#include <cstdint>

#include "net/byte_stream.h"

inline constexpr size_t kSendChunk = 255;
inline constexpr size_t kMostChunksAtOnce = 128;

class SendSocket {
 public:
  virtual ~SendSocket() = default;

  // False when not all could be sent.
  virtual bool SendAll(const char* bytes, int count) = 0;

  // Asked after every chunk, with the bytes so far: false aborts.
  virtual bool GoesOn(long long bytes) = 0;

  // From any moment on.
  virtual std::uint64_t Milliseconds() = 0;
};

// From where the stream stands to its end, for which a failing read is taken. kNetSuccess,
// kNetSendFailed or kNetAborted.
//
// What was reported is sent before the function returns, unless sending failed: then the last chunks
// that were reported, at most kMostChunksAtOnce of them, may be missing. A connection that takes its time
// gets few chunks at once, down to a single one, so that an abort does not wait for many.
int SendChunks(ByteStream& stream, SendSocket& socket);

#endif  // MOSAICON_NET_CHUNK_SENDER_H_
