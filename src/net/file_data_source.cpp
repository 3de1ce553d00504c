#include "net/file_data_source.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>
#include <utility>

namespace {

constexpr size_t kMostAtOnce = std::numeric_limits<std::int32_t>::max();

std::uint32_t PieceOf(size_t count) {
  return static_cast<std::uint32_t>(std::min(count, kMostAtOnce));
}

// Index of the CR of the first line end, or npos.
size_t LineEnd(const char* bytes, std::int32_t count) {
  return std::string_view(bytes, static_cast<size_t>(count)).find("\r\n");
}

}  // namespace

CUT_FileDataSource::CUT_FileDataSource(const char* name, int bufferSize)
    : m_pLineBuffer(new (std::nothrow) char[static_cast<size_t>(std::max(bufferSize, 1))]),
      m_nLineBufferSize(std::max(bufferSize, 1)) {
  if (name != nullptr) std::memcpy(m_szName.data(), name, strnlen(name, m_szName.size() - 1));
}

CUT_FileDataSource::~CUT_FileDataSource() = default;

CUT_DataSource* CUT_FileDataSource::Clone() {
  return new (std::nothrow) CUT_FileDataSource(m_szName.data(), m_nLineBufferSize);
}

int CUT_FileDataSource::Open(int mode) {
  if (m_szName[0] == '\0') return -1;
  switch (mode) {
    case kSourceRead:
      return OpenFile(kFileReadAccess, kFileOpenExisting, 0);
    case kSourceWrite:
      return OpenFile(kFileReadAccess | kFileWriteAccess, kFileCreateAlways, 0);
    case kSourceAppend:
      return OpenFile(kFileReadAccess | kFileWriteAccess, kFileOpenAlways, 1);
    default:
      return -1;
  }
}

int CUT_FileDataSource::OpenFile(std::uint32_t access, std::uint32_t disposition, int append) {
  m_nBuffered = 0;
  return m_file.Open(m_szName.data(), access, disposition, append);
}

int CUT_FileDataSource::Close() {
  m_nBuffered = 0;
  m_file.Close();
  return 0;
}

int CUT_FileDataSource::ReadLine(char* buffer, size_t size) {
  if (buffer == nullptr || size == 0) return -1;
  buffer[0] = '\0';
  if (m_pLineBuffer == nullptr) return -1;
  size_t length = LineEnd(m_pLineBuffer.get(), m_nBuffered);
  if (length == std::string_view::npos) {
    if (FillLineBuffer() == -1) return -1;
    length = LineEnd(m_pLineBuffer.get(), m_nBuffered);
  }
  if (length != std::string_view::npos && length + 3 < size) {
    return TakeBuffered(buffer, static_cast<int>(length) + 2);
  }
  return TakeBuffered(buffer, static_cast<int>(std::min(size - 1, static_cast<size_t>(m_nBuffered))));
}

// Reads as much as there is room for, but for one byte. -1 when the file cannot be read.
int CUT_FileDataSource::FillLineBuffer() {
  const int room = m_nLineBufferSize - m_nBuffered - 1;
  const int count = m_file.Read(m_pLineBuffer.get() + m_nBuffered, static_cast<std::uint32_t>(room));
  if (count > 0) m_nBuffered += count;
  return count;
}

// Moves count bytes from the front of the line buffer into buffer, and terminates that.
int CUT_FileDataSource::TakeBuffered(char* buffer, int count) {
  char* const bytes = m_pLineBuffer.get();
  std::memcpy(buffer, bytes, static_cast<size_t>(count));
  buffer[count] = '\0';
  m_nBuffered -= count;
  std::memmove(bytes, bytes + count, static_cast<size_t>(m_nBuffered));
  return count;
}

int CUT_FileDataSource::WriteLine(const char* text) {
  if (text == nullptr) return -1;
  const size_t length = std::strlen(text);
  int written = 0;
  if (length > 0) written = Write(text, length);
  if (written < 0 || static_cast<size_t>(written) < length) return written;
  if (length > 0 && (text[length - 1] == '\n' || text[length - 1] == '\r')) return written;
  return Write("\r\n", 2) == 2 ? written : -1;
}

int CUT_FileDataSource::Read(char* buffer, size_t count) {
  if (buffer == nullptr) return -1;
  m_nBuffered = 0;
  return m_file.Read(buffer, PieceOf(count));
}

int CUT_FileDataSource::Write(const char* buffer, size_t count) {
  if (buffer == nullptr) return -1;
  return m_file.Write(buffer, PieceOf(count));
}

long CUT_FileDataSource::Seek(long offset, int origin) {
  if (origin == kSeekCurrent && m_nBuffered > 0) {
    const std::int64_t consumed = m_file.Seek(0, kSeekCurrent) - m_nBuffered;
    if (consumed > 0) m_file.Seek(-m_nBuffered, kSeekCurrent);
  }
  m_nBuffered = 0;
  if (!std::in_range<std::int32_t>(offset)) return -1;
  const std::int64_t position =
      m_file.Seek(static_cast<std::int32_t>(offset), static_cast<std::uint32_t>(origin));
  return std::in_range<std::int32_t>(position) ? static_cast<long>(position) : -1;
}
