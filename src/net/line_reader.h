// Takes one line from a socket, without a byte of what follows it: peeks first, and receives what
// belongs to the line. Portable: the socket is an interface.
#ifndef MOSAICON_NET_LINE_READER_H_
#define MOSAICON_NET_LINE_READER_H_

#include <cstddef>

class LineSocket {
 public:
  virtual ~LineSocket() = default;

  virtual bool IsAborted() = 0;

  // False when nothing can be read within the time.
  virtual bool WaitForData(long seconds) = 0;

  // At most count bytes that are waiting, without and with removing them. The number of bytes; 0 when
  // the other side has closed, negative when the socket failed.
  virtual int Peek(char* buffer, int count) = 0;
  virtual int Take(char* buffer, int count) = 0;
};

// Puts one line with its line feed and a terminator into buffer, and returns the number of bytes before
// the terminator. A longer line comes in pieces of size - 1 bytes. Fewer bytes, or none, come when the
// socket is aborted, silent for seconds (0 and below: it is not waited for), closed or failed. Bytes
// may be NUL.
int ReadLineFrom(LineSocket& socket, char* buffer, size_t size, long seconds);

#endif  // MOSAICON_NET_LINE_READER_H_
