#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "files/write_file.h"

namespace files {

namespace {

std::error_code LastError() {
  return {errno, std::generic_category()};
}

std::error_code WriteAll(int file, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(file, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return LastError();
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return {};
}

}  // namespace

std::error_code WriteFile(const std::filesystem::path& path, std::string_view content) {
  constexpr mode_t kForAll = 0666;  // as far as the user's mask allows
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kForAll);
  if (file < 0) return LastError();
  std::error_code failed = WriteAll(file, content);
  // Some file systems say only now that there is no room.
  if (close(file) != 0 && !failed) failed = LastError();
  return failed;
}

std::error_code MakeFolder(const std::filesystem::path& path) {
  constexpr mode_t kForAll = 0777;  // as far as the user's mask allows
  if (mkdir(path.c_str(), kForAll) == 0) return {};
  const std::error_code failed = LastError();
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored) ? std::error_code() : failed;
}

std::error_code MoveFileOver(const std::filesystem::path& source, const std::filesystem::path& target) {
  std::error_code failed;
  std::filesystem::rename(source, target, failed);
  return failed;
}

LockedFile::~LockedFile() {
  Close();
}

std::error_code LockedFile::Open(const std::filesystem::path& path) {
  constexpr mode_t kForAll = 0666;  // as far as the user's mask allows
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, kForAll);
  if (file < 0) return LastError();
  m_file = file;
  if (flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return {};
  Close();
  return std::make_error_code(std::errc::device_or_resource_busy);
}

std::string LockedFile::Content() const {
  std::string content;
  std::array<char, 65536> piece = {};
  for (;;) {
    const ssize_t count =
        pread(static_cast<int>(m_file), piece.data(), piece.size(), static_cast<off_t>(content.size()));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return content;
    content.append(piece.data(), static_cast<std::size_t>(count));
  }
}

std::error_code LockedFile::CutTo(std::size_t bytes) {
  return ftruncate(static_cast<int>(m_file), static_cast<off_t>(bytes)) == 0 ? std::error_code()
                                                                             : LastError();
}

std::error_code LockedFile::Append(std::string_view text) {
  return WriteAll(static_cast<int>(m_file), text);
}

std::error_code LockedFile::Close() {
  if (!IsOpen()) return {};
  const int file = static_cast<int>(m_file);
  m_file = kNone;
  return close(file) == 0 ? std::error_code() : LastError();
}

std::string WordsFor(const std::error_code& error) {
  return error == std::errc::no_space_on_device ? "the disk is full" : error.message();
}

bool IsHeldOpen(const std::error_code& error) {
  return error == std::errc::permission_denied;  // of some network disks
}

}  // namespace files
