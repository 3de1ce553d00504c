// What MapViewOfFile has mapped, until the end of its scope. Win32.
#ifndef MOSAICON_HANDLES_MAPPED_VIEW_H_
#define MOSAICON_HANDLES_MAPPED_VIEW_H_

#include <windows.h>

#include <memory>

struct ViewCloser {
  void operator()(const void* view) const { UnmapViewOfFile(view); }
};
template <class Contents>
using MappedView = std::unique_ptr<Contents, ViewCloser>;

#endif  // MOSAICON_HANDLES_MAPPED_VIEW_H_
