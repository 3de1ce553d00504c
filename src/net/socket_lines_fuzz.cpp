// libFuzzer: whatever arrives in whatever packets, the lines put together are what was sent, and none
// takes a byte of the next. The first byte is the size of the buffer, the packets follow, each with its
// length in front; a length of 255 is a failure of the socket.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "net/line_reader.h"

namespace {

class PacketSocket : public LineSocket {
 public:
  PacketSocket(const uint8_t* data, size_t size) : m_pData(data), m_nLeft(size) { NextPacket(); }

  bool IsAborted() override { return false; }
  bool WaitForData(long) override { return m_nPacket > 0; }
  int Peek(char* buffer, int count) override { return Move(buffer, count); }
  int Take(char* buffer, int count) override {
    const int taken = Move(buffer, count);
    if (taken <= 0) return taken;
    m_pData += taken;
    m_nPacket -= static_cast<size_t>(taken);
    m_strTaken.append(buffer, static_cast<size_t>(taken));
    if (m_nPacket == 0) NextPacket();
    return taken;
  }

  const std::string& Taken() const { return m_strTaken; }

 private:
  int Move(char* buffer, int count) {
    if (count <= 0) __builtin_trap();
    if (m_bFailed) return -1;
    const size_t moved = std::min(m_nPacket, static_cast<size_t>(count));
    if (moved > 0) std::memcpy(buffer, m_pData, moved);
    return static_cast<int>(moved);
  }

  void NextPacket() {
    while (m_nPacket == 0 && m_nLeft > 0 && !m_bFailed) {
      const uint8_t length = *m_pData++;
      --m_nLeft;
      m_bFailed = length == 255;
      m_nPacket = std::min<size_t>(length, m_nLeft);
      m_nLeft -= m_nPacket;
    }
  }

  const uint8_t* m_pData;
  size_t m_nPacket = 0;
  size_t m_nLeft;
  bool m_bFailed = false;
  std::string m_strTaken;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  std::vector<char> buffer(data[0] + size_t{1});
  const long seconds = data[0] % 2;
  PacketSocket socket(data + 1, size - 1);
  std::string together;
  int count = 0;
  do {
    count = ReadLineFrom(socket, buffer.data(), buffer.size(), seconds);
    if (count < 0 || static_cast<size_t>(count) >= buffer.size() ||
        buffer[static_cast<size_t>(count)] != '\0') {
      __builtin_trap();
    }
    const std::string line(buffer.data(), static_cast<size_t>(count));
    if (line.find('\n') < line.size() - 1 && count > 0) __builtin_trap();
    together += line;
  } while (count > 0);
  if (together != socket.Taken()) __builtin_trap();
  return 0;
}
