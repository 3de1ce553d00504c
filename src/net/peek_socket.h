// A socket from which can be received twice: first to look, then to take what is wanted. Portable.
#ifndef MOSAICON_NET_PEEK_SOCKET_H_
#define MOSAICON_NET_PEEK_SOCKET_H_

class PeekSocket {
 public:
  virtual ~PeekSocket() = default;

  // False when nothing can be read within the time.
  virtual bool WaitForData(long seconds) = 0;

  // At most count bytes that are waiting, without and with removing them. The number of bytes; 0 when
  // the other side has closed, negative when the socket failed.
  virtual int Peek(char* buffer, int count) = 0;
  virtual int Take(char* buffer, int count) = 0;
};

#endif  // MOSAICON_NET_PEEK_SOCKET_H_
