// What CUT_File needs of the operating system. cut_file_windows.cpp and cut_file_posix.cpp implement
// it; positions and sizes are 64-bit here. A handle is -1 when there is no file.
#ifndef MOSAICON_NET_CUT_FILE_SYSTEM_H_
#define MOSAICON_NET_CUT_FILE_SYSTEM_H_

#include <cstdint>

// Arguments as for CUT_File::Open, but the name is used as it is.
std::intptr_t OpenSystemFile(const char* name, std::uint32_t access, std::uint32_t disposition);
void CloseSystemFile(std::intptr_t file);

// The number of bytes moved, or -1. count is at most 2,147,483,647.
int ReadSystemFile(std::intptr_t file, void* buffer, std::uint32_t count);
int WriteSystemFile(std::intptr_t file, const void* buffer, std::uint32_t count);

// -1 when the system refuses, as it does for what is no file on a disk.
std::int64_t SystemFileSize(std::intptr_t file);
std::int64_t SystemFilePosition(std::intptr_t file);
bool SetSystemFilePosition(std::intptr_t file, std::int64_t position);

#endif  // MOSAICON_NET_CUT_FILE_SYSTEM_H_
