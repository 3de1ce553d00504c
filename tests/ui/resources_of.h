// What another process has open: to see that it gives back what it takes. Win32.
#ifndef MOSAICON_TESTS_UI_RESOURCES_OF_H_
#define MOSAICON_TESTS_UI_RESOURCES_OF_H_

#include <ostream>

#include "ui/window_driver.h"

struct ResourceCount {
  int handles = 0;
  int drawingObjects = 0;  // fonts, brushes, bitmaps, ...
  int windows = 0;
  double privateMegabytes = 0;
};

// Counted one by one: the functions that tell these numbers tell nothing under Wine.
ResourceCount CountResources(const Program& program);

std::ostream& operator<<(std::ostream& out, const ResourceCount& count);

#endif  // MOSAICON_TESTS_UI_RESOURCES_OF_H_
