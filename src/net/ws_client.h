// A blocking TCP (and UDP) client with time-outs: connects or listens, sends and receives blocks, lines
// and whole data sources, and tells a subclass about errors, progress and the wish to abort.
//
// Owns at most two sockets, the connected one and the listening one; the destructor closes both. Text
// is 8-bit. Portable. One thread at a time; IsAborted is how another thread stops a transfer, within one
// chunk or one wait. Operations return an error code (0: success) unless they say otherwise, and every code
// goes through OnError. Nothing throws.
//
// Waiting: seconds of 0 or less mean that the operation does not wait for data first; the receive that
// follows then blocks for as long as the receive time-out.
#ifndef MOSAICON_NET_WS_CLIENT_H_
#define MOSAICON_NET_WS_CLIENT_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "net/byte_stream.h"
#include "net/cut_socket.h"
#include "net/data_source.h"
#include "net/socket_wait.h"

class CUT_WSClient : public CUT_Socket {
 public:
  CUT_WSClient();

  // The order of the virtual functions is part of the interface.
  ~CUT_WSClient() override;

  // As for every socket, but with the turns of the listener.
  int WaitReadable(SocketHandle socket, long seconds, long microseconds) override;

  // Connects to a dotted address or a name. timeout in seconds; negative blocks for as long as the
  // system tries. A port that is refused while there is a time-out counts as silent: 5, but
  // without the wait.
  virtual int Connect(std::uint16_t port, const char* address, long timeout = -1,
                      int family = kInternetFamily, int type = kStreamSocket);
  // The same from a local address and port (null and 0: any). Dotted addresses only, no time-out.
  virtual int ConnectBound(std::uint16_t localPort, std::uint16_t remotePort, const char* localAddress,
                           const char* remoteAddress, int family = kInternetFamily, int type = kStreamSocket);
  // A socket for datagrams to and from a remote dotted address (null: none yet, see ReceiveDatagram).
  virtual int OpenDatagram(std::uint16_t localPort, std::uint16_t remotePort, const char* remoteAddress,
                           const char* localAddress = nullptr);
  // 0 or 1.
  virtual int CreateSocketHandle(SocketHandle& socket, int family, int type, int protocol);
  // Closes both sockets. 0, or 1 when anything failed; they are closed all the same.
  virtual int CloseConnection();
  // Makes the hidden window that receives notifications for this client. Its thread must dispatch
  // messages. module is an HINSTANCE. 0, or 1, as on every system that has no such windows.
  virtual int CreateNotifyWindow(void* module);

  // localAddress is in network order.
  virtual int Listen(std::uint16_t port, int backlog = 1, int family = kInternetFamily,
                     std::uint32_t localAddress = kAnyIp);
  // 0 when a connection is pending, 1 otherwise.
  virtual int WaitForAccept(long seconds);
  // Closes the connected socket and takes the next pending connection; blocks while there is none.
  virtual int AcceptConnection();

  // In chunks of 255 bytes, from where the stream stands to its end. Several of them may go out together.
  virtual int SendFromStream(ByteStream& stream);
  // Opens the source for reading and closes it.
  virtual int SendFromSource(CUT_DataSource& source);
  // The bytes sent, 0 on error. A length below 1 is that of the text.
  virtual int Send(const char* buffer, int length = -1);
  virtual int SendAll(const char* buffer, int length = -1);
  // Sends pieces of at most lineLength bytes with a line end each. A negative length is that of the
  // text. The bytes of text sent.
  virtual int SendInLines(const char* buffer, int length, int lineLength);
  virtual int SendFileByName(const char* fileName);
  // length is replaced by the number of bytes sent.
  virtual int SendDatagram(const char* buffer, int& length);
  // 0 when something can be sent within the time, 1 otherwise.
  virtual int WaitWritable(long seconds, long microseconds);

  // In chunks of 256 bytes until the peer closes or maximum bytes have come; 0 or less: as many as the
  // stream takes. seconds is for each chunk.
  virtual int ReceiveToStream(ByteStream& stream, long seconds, long maximum);
  // Opens the source for writing or appending and closes it. maximum 0: no limit.
  virtual int ReceiveToSource(CUT_DataSource& source, int mode, long seconds, long maximum);
  // The bytes received by one call; 0 when none came in time or the peer has closed, -1 on error.
  virtual int Receive(char* buffer, int length, long seconds);
  // The bytes received; fewer than length when the time ran out, the peer closed or the socket failed.
  virtual int ReceiveAll(char* buffer, int length, long seconds);
  virtual int ReceiveFileByName(const char* fileName, int mode, long seconds);
  // One line with its line feed, see line_reader.h. The bytes placed.
  virtual int ReceiveLine(char* buffer, size_t size, long seconds);
  // Receives and forgets what has arrived, at most 1 MiB. Always 0.
  virtual int DrainInput();
  // length is replaced by the number of bytes received. What is sent next goes to their sender.
  virtual int ReceiveDatagram(char* buffer, int& length, long seconds);
  // 0 when something can be received within the time, 1 otherwise.
  virtual int WaitForReceive(long seconds, long microseconds);

  // Hooks. OnError sees every error code, 0 included, and returns it unchanged. Progress hooks get the
  // bytes so far and return non-zero to go on; they are IsAborted's opposite unless overridden.
  virtual int OnError(int code);
  virtual int OnReceiveProgress(long bytes);
  virtual int OnSendProgress(long bytes);
  virtual int IsAborted();
  // Messages 1152, 1153 and 1154 to the notification window; do nothing unless overridden.
  virtual void OnNotification1(int low, int high);
  virtual void OnNotification2(int high);
  virtual void OnNotification3(int high);

  // For the open socket; refused (1) while there is none. Kept for the connections that follow.
  int SetReceiveTimeout(std::int32_t milliseconds);
  int SetSendTimeout(std::int32_t milliseconds);
  // 1 makes the socket non-blocking, 0 blocking.
  int SetBlockingMode(std::int32_t nonBlocking);

  // False when the peer has closed and everything is received, or the connection is broken. Leaves the
  // socket blocking.
  bool IsConnected();

  // The dotted address of a name, of which only what follows the last "@" counts. 7 or 35.
  int LookUpAddress(const char* name, char* address, size_t size);

  // From this value of TimeoutClock on, ReceiveLine stops where it is, as after an abort, however fast
  // the bytes come. 0: never.
  void SetLineDeadline(std::uint64_t deadline) { m_nLineDeadline = deadline; }

  // Every wait lets the listener have its turns. Borrowed; null (the default): nobody.
  void SetWaitListener(WaitListener* listener) { m_pWaitListener = listener; }

  // ReceiveLine for what must be read, abort or not: an abort ends it only when TimeoutClock has
  // passed deadline.
  int ReceiveLineDespiteAbort(char* buffer, size_t size, long seconds, std::uint64_t deadline);

  std::uint16_t GetRemotePort() const { return m_nRemotePort; }
  std::uint16_t GetLocalPort() const { return m_nLocalPort; }
  std::uint16_t GetListeningPort() const { return m_nListeningPort; }
  const char* GetRemoteAddress() const { return m_szRemoteAddress; }
  std::int32_t GetReceiveTimeout() const { return m_nReceiveTimeout; }
  std::int32_t GetSendTimeout() const { return m_nSendTimeout; }

 protected:
  // What the setters keep, for connections to come.
  void PresetTimeouts(std::int32_t receiveMilliseconds, std::int32_t sendMilliseconds);

  WaitListener* GetWaitListener() const { return m_pWaitListener; }

  // Of the other end, dotted, however it was named to Connect.
  std::string RemoteIp() const;

  // Closes the connection that was accepted, and listens on.
  void CloseAccepted() { CloseSocket(m_socket, true); }

  // "127.0.0.1" into text; false when there is no local end.
  bool GetLocalAddress(char* text, size_t size);

 private:
  template <class Interface>
  class Peeking;
  class Lines;
  class ReceivedChunks;
  class SentChunks;

  bool FindRemoteAddress(const char* address, SocketAddress& remote);
  int ConnectWithin(long timeout);
  int CloseAfter(int code);
  int CloseSocket(SocketHandle& socket, bool shutDown);
  int ApplyTimeouts(SocketHandle socket);
  void StorePorts();
  void SetRemote(const SocketAddress& remote);
  int SendBytes(ByteStream& bytes);
  int ReceiveBytes(ByteStream& bytes, long seconds, long maximum);
  bool WaitWithListener();

  void DestroyNotifyWindow();

  std::uint16_t m_nRemotePort = 0;  // ports in host order
  std::uint16_t m_nLocalPort = 0;
  std::uint16_t m_nListeningPort = 0;
  char m_szRemoteAddress[31] = "";
  std::int32_t m_nProtocol = 0;
  std::int32_t m_nFamily = kInternetFamily;
  std::int32_t m_nType = kStreamSocket;
  SocketHandle m_socket = kNoSocket;
  SocketAddress m_remote;
  SocketHandle m_listeningSocket = kNoSocket;
  SocketAddress m_listening;
  std::int32_t m_bNonBlocking = 0;
  std::int32_t m_bStarted = 1;
  void* m_hNotifyWindow = nullptr;      // HWND
  std::int32_t m_nSendTimeout = 30000;  // milliseconds
  std::int32_t m_nReceiveTimeout = 30000;
  std::uint64_t m_nLineDeadline = 0;
  WaitListener* m_pWaitListener = nullptr;
};

#endif  // MOSAICON_NET_WS_CLIENT_H_
