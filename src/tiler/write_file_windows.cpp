#include <windows.h>

#include <algorithm>
#include <array>

#include "files/wide_text.h"
#include "handles/unique_handle.h"
#include "tiler/tiler_error.h"
#include "tiler/write_file.h"

namespace tiler {

namespace {

std::error_code LastError() {
  return {static_cast<int>(GetLastError()), std::system_category()};
}

bool IsOneOf(const std::error_code& error, std::initializer_list<DWORD> numbers) {
  return error.category() == std::system_category() &&
         std::find(numbers.begin(), numbers.end(), static_cast<DWORD>(error.value())) != numbers.end();
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

}  // namespace tiler
