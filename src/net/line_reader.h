// Takes one line from a socket, without a byte of what follows it: peeks first, and receives what
// belongs to the line. Portable: the socket is an interface.
#ifndef MOSAICON_NET_LINE_READER_H_
#define MOSAICON_NET_LINE_READER_H_

#include <cstddef>

#include "net/peek_socket.h"

class LineSocket : public PeekSocket {
 public:
  virtual bool IsAborted() = 0;
};

// Puts one line with its line feed and a terminator into buffer, and returns the number of bytes before
// the terminator. A longer line comes in pieces of size - 1 bytes. Fewer bytes, or none, come when the
// socket is aborted, silent for seconds (0 and below: it is not waited for), closed or failed. Bytes
// may be NUL.
int ReadLineFrom(LineSocket& socket, char* buffer, size_t size, long seconds);

#endif  // MOSAICON_NET_LINE_READER_H_
