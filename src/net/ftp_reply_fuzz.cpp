// libFuzzer: whatever a server says, replies are read one after the other to its end, nothing is read
// twice, and their texts fit the buffers they are copied into.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "net/ftp_reply.h"

namespace {

class BytesSource : public ReplySource {
 public:
  BytesSource(const uint8_t* data, size_t size) : m_bytes(data, data + size) {}

  int NextLine(char* buffer, size_t size) override {
    const size_t rest = std::min(m_bytes.size() - m_nPlace, size - 1);
    if (rest == 0) return 0;
    const char* begin = m_bytes.data() + m_nPlace;
    const void* lineFeed = std::memchr(begin, '\n', rest);
    const size_t count =
        lineFeed == nullptr ? rest : static_cast<size_t>(static_cast<const char*>(lineFeed) - begin) + 1;
    std::memcpy(buffer, begin, count);
    buffer[count] = '\0';
    m_nPlace += count;
    return static_cast<int>(count);
  }

  size_t Place() const { return m_nPlace; }
  bool IsBetweenLines() const { return m_nPlace == m_bytes.size() || m_bytes[m_nPlace - 1] == '\n'; }

 private:
  std::vector<char> m_bytes;
  size_t m_nPlace = 0;
};

void CheckTexts(const char* line, int size) {
  std::vector<char> buffer(static_cast<size_t>(size), '#');
  CopyReplyText(line, buffer.data(), size);
  const size_t length = strnlen(buffer.data(), buffer.size());
  if (length > static_cast<size_t>(std::max(size - 2, 0))) __builtin_trap();
  if (length > 0 && std::strncmp(line + 4, buffer.data(), length) != 0) __builtin_trap();

  const bool hasPath = QuotedPath(line, buffer.data(), size);
  const size_t pathLength = strnlen(buffer.data(), buffer.size());
  if (pathLength == buffer.size()) __builtin_trap();
  if (hasPath && std::strstr(line, buffer.data()) == nullptr) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int bufferSize = data[0] + 1;
  BytesSource source(data + 1, size - 1);
  CUT_StringList lines;
  char line[kFtpLineSize];
  size_t place = 0;
  do {
    place = source.Place();
    std::memset(line, '#', sizeof line);
    const int code = ReadReply(source, line, lines);
    if (code < -99 || code > 999) __builtin_trap();
    if (strnlen(line, sizeof line) == sizeof line || !source.IsBetweenLines()) __builtin_trap();
    if (source.Place() > place && lines.GetString(lines.GetCount() - 1) != std::string(line))
      __builtin_trap();
    CheckTexts(line, bufferSize);
  } while (source.Place() > place);
  return 0;
}
