#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "net/cut_file.h"
#include "net/cut_file_system.h"

namespace {

int AccessFlags(std::uint32_t access) {
  if ((access & kFileWriteAccess) == 0) return O_RDONLY;
  return (access & kFileReadAccess) == 0 ? O_WRONLY : O_RDWR;
}

// -1 for a disposition that the client does not use.
int DispositionFlags(std::uint32_t disposition) {
  switch (disposition) {
    case kFileCreateAlways:
      return O_CREAT | O_TRUNC;
    case kFileOpenExisting:
      return 0;
    case kFileOpenAlways:
      return O_CREAT;
    default:
      return -1;
  }
}

// Windows does not open folders as files, and this system would.
bool IsFolder(int file) {
  struct stat status = {};
  return fstat(file, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::intptr_t OpenSystemFile(const char* name, std::uint32_t access, std::uint32_t disposition) {
  const int flags = DispositionFlags(disposition);
  if (flags == -1) return -1;
  const int file = open(name, AccessFlags(access) | flags | O_CLOEXEC, 0666);
  if (file != -1 && IsFolder(file)) {
    close(file);
    return -1;
  }
  return file;
}

void CloseSystemFile(std::intptr_t file) {
  close(static_cast<int>(file));
}

int ReadSystemFile(std::intptr_t file, void* buffer, std::uint32_t count) {
  ssize_t moved = 0;
  do moved = read(static_cast<int>(file), buffer, count);
  while (moved == -1 && errno == EINTR);
  return static_cast<int>(moved);
}

int WriteSystemFile(std::intptr_t file, const void* buffer, std::uint32_t count) {
  ssize_t moved = 0;
  do moved = write(static_cast<int>(file), buffer, count);
  while (moved == -1 && errno == EINTR);
  return static_cast<int>(moved);
}

std::int64_t SystemFileSize(std::intptr_t file) {
  struct stat status = {};
  return fstat(static_cast<int>(file), &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : -1;
}

std::int64_t SystemFilePosition(std::intptr_t file) {
  return lseek(static_cast<int>(file), 0, SEEK_CUR);
}

bool SetSystemFilePosition(std::intptr_t file, std::int64_t position) {
  return lseek(static_cast<int>(file), position, SEEK_SET) != -1;
}
