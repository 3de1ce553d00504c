#include "net/line_reader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

int ReadLineFrom(LineSocket& socket, char* buffer, size_t size, long seconds) {
  if (buffer == nullptr || size == 0) return 0;
  buffer[0] = '\0';
  const auto room = static_cast<int>(std::min<size_t>(size - 1, std::numeric_limits<int>::max()));
  // What is peeked must not show in the caller's buffer behind the line.
  const std::unique_ptr<char[]> scratch(new (std::nothrow) char[size]);
  if (scratch == nullptr) return 0;

  int placed = 0;
  bool isWhole = false;
  while (!isWhole && placed < room) {
    if (socket.IsAborted() || (seconds > 0 && !socket.WaitForData(seconds))) break;
    const int peeked = socket.Peek(scratch.get(), room - placed);
    if (peeked < 1) break;
    const void* lineFeed = std::memchr(scratch.get(), '\n', static_cast<size_t>(peeked));
    const int wanted = lineFeed == nullptr
                           ? peeked
                           : static_cast<int>(static_cast<const char*>(lineFeed) - scratch.get()) + 1;
    const int taken = socket.Take(buffer + placed, wanted);
    if (taken < 1) break;
    placed += taken;
    isWhole = lineFeed != nullptr && taken == wanted;
  }
  buffer[placed] = '\0';
  return placed;
}
