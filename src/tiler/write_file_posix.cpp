#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "tiler/write_file.h"

namespace tiler {

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

std::string WordsFor(const std::error_code& error) {
  return error == std::errc::no_space_on_device ? "the disk is full" : error.message();
}

bool IsHeldOpen(const std::error_code& error) {
  return error == std::errc::permission_denied;  // of some network disks
}

}  // namespace tiler
