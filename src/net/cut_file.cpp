#include "net/cut_file.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

#include "net/cut_file_system.h"
#include "net/data_source.h"

namespace {

constexpr std::uint32_t kMostAtOnce = std::numeric_limits<std::int32_t>::max();
// The value above it is what the system's own 32-bit positions say for "failed".
constexpr std::int64_t kLastPosition = std::numeric_limits<std::uint32_t>::max() - std::int64_t{1};

std::string WithoutBlanksAround(std::string_view name) {
  const size_t first = name.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(name.substr(first, name.find_last_not_of(' ') + 1 - first));
}

// Where an offset is counted from, or -1.
std::int64_t SeekBase(std::intptr_t file, std::uint32_t origin) {
  switch (origin) {
    case kSeekBegin:
      return 0;
    case kSeekCurrent:
      return SystemFilePosition(file);
    case kSeekEnd:
      return SystemFileSize(file);
    default:
      return -1;
  }
}

}  // namespace

CUT_File::~CUT_File() {
  CUT_File::Close();
}

int CUT_File::Open(const char* name, std::uint32_t access, std::uint32_t disposition, int append) {
  Close();
  if (name == nullptr) return -1;
  m_hFile = OpenSystemFile(WithoutBlanksAround(name).c_str(), access, disposition);
  if (m_hFile == -1) return -1;
  m_bAppend = append;
  return 0;
}

int CUT_File::Close() {
  if (m_hFile != -1) CloseSystemFile(m_hFile);
  m_hFile = -1;
  return 0;
}

int CUT_File::Read(void* buffer, std::uint32_t count) {
  if (m_hFile == -1 || buffer == nullptr) return -1;
  return ReadSystemFile(m_hFile, buffer, std::min(count, kMostAtOnce));
}

int CUT_File::Write(const void* buffer, std::uint32_t count) {
  if (m_hFile == -1 || buffer == nullptr) return -1;
  // Without this test the bytes would go over what is there.
  if (m_bAppend != 0 && Seek(0, kSeekEnd) == -1) return -1;
  return WriteSystemFile(m_hFile, buffer, std::min(count, kMostAtOnce));
}

// Looks before it moves. The system's function for 32-bit positions does so, too, but Wine's moves on
// beyond 4 GiB and tells the low half of where it is.
std::int64_t CUT_File::Seek(std::int32_t offset, std::uint32_t origin) {
  if (m_hFile == -1) return -1;
  const std::int64_t base = SeekBase(m_hFile, origin);
  if (base == -1) return -1;
  const std::int64_t position = base + offset;
  if (position < 0 || position > kLastPosition) return -1;
  return SetSystemFilePosition(m_hFile, position) ? position : -1;
}

std::int64_t CUT_File::GetSize() {
  if (m_hFile == -1) return -1;
  const std::int64_t size = SystemFileSize(m_hFile);
  return size == -1 ? -1 : size & std::numeric_limits<std::uint32_t>::max();
}
