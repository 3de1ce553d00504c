// Bytes that are already open, for transfers that need no file: a queue in memory, for example. The
// transfer neither opens nor closes it. Portable; one thread at a time; nothing throws.
#ifndef MOSAICON_NET_BYTE_STREAM_H_
#define MOSAICON_NET_BYTE_STREAM_H_

#include <cstddef>

class ByteStream {
 public:
  virtual ~ByteStream() = default;

  // The number of bytes moved, which may be fewer than count; 0 at the end of what can be read, -1 on
  // failure.
  virtual int Read(char* buffer, size_t count) = 0;
  virtual int Write(const char* buffer, size_t count) = 0;

  // How many bytes the stream takes in all when the receiver sets no maximum; 0 for no limit.
  virtual long GetLength() = 0;
};

#endif  // MOSAICON_NET_BYTE_STREAM_H_
