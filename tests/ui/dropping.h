// Drops files on a window of another process, as the shell does when the user lets go of them there.
//
// The message carries memory of its receiver. Windows copies it there; Wine does not, so it is put there
// by hand. The few bytes stay there. Win32.
#ifndef MOSAICON_TESTS_UI_DROPPING_H_
#define MOSAICON_TESTS_UI_DROPPING_H_

#include <string>
#include <vector>

#include "ui/window_driver.h"

// False when the memory could not be had.
bool DropFiles(const Program& program, const Window& window, const std::vector<std::string>& paths);

#endif  // MOSAICON_TESTS_UI_DROPPING_H_
