// Loopback connection between python.exe and its Linux half (python_host.py).
//
// A frame is one byte that says what it is, four bytes of length (little endian), and the payload.
// One thread. Failures are false; after one, the channel is good for nothing but destruction.
#ifndef MOSAICON_TOOLS_WINE_HOST_CHANNEL_H
#define MOSAICON_TOOLS_WINE_HOST_CHANNEL_H

#include <winsock2.h>

#include <chrono>
#include <string>
#include <string_view>
#include <utility>

namespace bridge {

// The values are those of python_host.py.
enum class FrameKind : char {
  // to the agent
  kDirectory = 'D',     // current directory, Unix path
  kArgument = 'A',      // next argument, as is
  kPathArgument = 'P',  // next argument, Unix path
  kVariable = 'V',      // NAME=Unix path; nothing behind the equals sign removes the variable
  kGo = 'G',            // request complete, start the script
  // from the agent
  kOutput = 'O',   // bytes of the script's standard output and standard error
  kExit = 'X',     // script has ended; exit code as decimal digits
  kFailure = 'F',  // script could not be started; the reason in UTF-8
};

struct Frame {
  FrameKind kind;
  std::string payload;
};

class Socket {
 public:
  explicit Socket(SOCKET handle = INVALID_SOCKET) : handle_(handle) {}
  Socket(Socket&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_SOCKET)) {}
  Socket& operator=(Socket&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Socket() {
    if (*this) {
      closesocket(handle_);
    }
  }
  explicit operator bool() const { return handle_ != INVALID_SOCKET; }
  SOCKET Get() const { return handle_; }

 private:
  SOCKET handle_;
};

class HostChannel {
 public:
  HostChannel();
  ~HostChannel();
  HostChannel(const HostChannel&) = delete;
  HostChannel& operator=(const HostChannel&) = delete;

  // Opens a port of the system's choice on 127.0.0.1.
  bool Listen();
  unsigned short Port() const;

  // Waits until somebody connects who says the token; others are turned away. Closes the port.
  bool AwaitAgent(std::string_view token, std::chrono::milliseconds timeout);

  bool Send(FrameKind kind, std::string_view payload = {});

  // Blocks until a frame is there. False when the agent is gone or talks nonsense.
  bool Receive(Frame& frame);

 private:
  struct Winsock {
    Winsock();
    ~Winsock();
    bool started;
  };

  Winsock winsock_;  // first: outlives the sockets
  Socket listener_;
  Socket agent_;
};

}  // namespace bridge

#endif
