// A handle of Windows' kernel (file, process, thread, event, mapping, snapshot) that closes itself. Win32.
#ifndef MOSAICON_HANDLES_UNIQUE_HANDLE_H_
#define MOSAICON_HANDLES_UNIQUE_HANDLE_H_

#include <windows.h>

#include <memory>

struct HandleCloser {
  void operator()(HANDLE handle) const {
    if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
  }
};
// Null or INVALID_HANDLE_VALUE when there is none, as the function tells that made it.
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

#endif  // MOSAICON_HANDLES_UNIQUE_HANDLE_H_
