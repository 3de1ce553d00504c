#include <windows.h>

#include "net/cut_file_system.h"

namespace {

// An interface without <windows.h> keeps handles as numbers.
HANDLE AsHandle(std::intptr_t file) {
  return reinterpret_cast<HANDLE>(file);
}

}  // namespace

std::intptr_t OpenSystemFile(const char* name, std::uint32_t access, std::uint32_t disposition) {
  const HANDLE file =
      CreateFileA(name, access, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  return reinterpret_cast<std::intptr_t>(file);
}

void CloseSystemFile(std::intptr_t file) {
  CloseHandle(AsHandle(file));
}

int ReadSystemFile(std::intptr_t file, void* buffer, std::uint32_t count) {
  DWORD moved = 0;
  return ReadFile(AsHandle(file), buffer, count, &moved, nullptr) ? static_cast<int>(moved) : -1;
}

int WriteSystemFile(std::intptr_t file, const void* buffer, std::uint32_t count) {
  DWORD moved = 0;
  return WriteFile(AsHandle(file), buffer, count, &moved, nullptr) ? static_cast<int>(moved) : -1;
}

std::int64_t SystemFileSize(std::intptr_t file) {
  LARGE_INTEGER size = {};
  return GetFileSizeEx(AsHandle(file), &size) ? size.QuadPart : -1;
}

std::int64_t SystemFilePosition(std::intptr_t file) {
  LARGE_INTEGER position = {};
  return SetFilePointerEx(AsHandle(file), {}, &position, FILE_CURRENT) ? position.QuadPart : -1;
}

bool SetSystemFilePosition(std::intptr_t file, std::int64_t position) {
  LARGE_INTEGER target = {};
  target.QuadPart = position;
  return SetFilePointerEx(AsHandle(file), target, nullptr, FILE_BEGIN) != FALSE;
}
