#include <windows.h>

#include <algorithm>
#include <array>

#include "files/one_line.h"
#include "files/wide_text.h"
#include "files/write_file.h"
#include "handles/unique_handle.h"

namespace files {

namespace {

std::error_code LastError() {
  return {static_cast<int>(GetLastError()), std::system_category()};
}

bool IsOneOf(const std::error_code& error, std::initializer_list<DWORD> numbers) {
  return error.category() == std::system_category() &&
         std::find(numbers.begin(), numbers.end(), static_cast<DWORD>(error.value())) != numbers.end();
}

HANDLE HandleOf(std::intptr_t file) {
  return reinterpret_cast<HANDLE>(file);
}

std::error_code WriteAll(HANDLE file, std::string_view content) {
  constexpr std::size_t kMost = 1 << 30;
  while (!content.empty()) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(std::min(content.size(), kMost));
    if (!::WriteFile(file, content.data(), size, &written, nullptr)) return LastError();
    content.remove_prefix(written);
  }
  return {};
}

}  // namespace

std::error_code WriteFile(const std::filesystem::path& path, std::string_view content) {
  const UniqueHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
  if (file.get() == INVALID_HANDLE_VALUE) return LastError();
  return WriteAll(file.get(), content);
}

// These two not by the standard library, which tells all failures but one as an input or output error.
std::error_code MakeFolder(const std::filesystem::path& path) {
  if (CreateDirectoryW(path.c_str(), nullptr)) return {};
  const std::error_code failed = LastError();
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored) ? std::error_code() : failed;
}

std::error_code MoveFileOver(const std::filesystem::path& source, const std::filesystem::path& target) {
  if (MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING)) return {};
  return LastError();
}

LockedFile::~LockedFile() {
  Close();
}

std::error_code LockedFile::Open(const std::filesystem::path& path) {
  // A virus scanner may have it open for a moment.
  for (const DWORD delay : {50, 200, 500, 0}) {
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                              OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    m_file = reinterpret_cast<std::intptr_t>(file);
    if (IsOpen()) return {};
    if (GetLastError() != ERROR_SHARING_VIOLATION) return LastError();
    Sleep(delay);
  }
  return std::make_error_code(std::errc::device_or_resource_busy);
}

std::string LockedFile::Content() const {
  std::string content;
  std::array<char, 65536> piece = {};
  DWORD count = 0;
  SetFilePointerEx(HandleOf(m_file), {}, nullptr, FILE_BEGIN);
  while (::ReadFile(HandleOf(m_file), piece.data(), static_cast<DWORD>(piece.size()), &count, nullptr) &&
         count > 0) {
    content.append(piece.data(), count);
  }
  return content;
}

std::error_code LockedFile::CutTo(std::size_t bytes) {
  LARGE_INTEGER end = {};
  end.QuadPart = static_cast<LONGLONG>(bytes);
  const bool isCut =
      SetFilePointerEx(HandleOf(m_file), end, nullptr, FILE_BEGIN) && SetEndOfFile(HandleOf(m_file));
  return isCut ? std::error_code() : LastError();
}

std::error_code LockedFile::Append(std::string_view text) {
  if (!SetFilePointerEx(HandleOf(m_file), {}, nullptr, FILE_END)) return LastError();
  return WriteAll(HandleOf(m_file), text);
}

std::error_code LockedFile::Close() {
  if (!IsOpen()) return {};
  HANDLE file = HandleOf(m_file);
  m_file = kNone;
  return CloseHandle(file) ? std::error_code() : LastError();
}

std::string WordsFor(const std::error_code& error) {
  if (IsOneOf(error, {ERROR_DISK_FULL, ERROR_HANDLE_DISK_FULL}) || error == std::errc::no_space_on_device) {
    return "the disk is full";
  }
  if (error.category() != std::system_category()) return error.message();
  std::array<wchar_t, 512> words = {};
  FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                 static_cast<DWORD>(error.value()), 0, words.data(), words.size(), nullptr);
  std::string text = OneLine(Utf8FromWide(words.data()));
  if (text.ends_with('.')) text.pop_back();
  return text.empty() ? "error " + std::to_string(error.value()) : text;
}

bool IsHeldOpen(const std::error_code& error) {
  return IsOneOf(error, {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION});
}

}  // namespace files
