// Pictures of what is on the screen. Win32; the screen must be there, and the window in front.
#ifndef MOSAICON_TESTS_UI_SCREENSHOT_H_
#define MOSAICON_TESTS_UI_SCREENSHOT_H_

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> pixels;  // 0x00RRGGBB, top row first

  bool operator==(const Picture&) const = default;
};

// Of a part of the screen as it is now; what lies outside of the screen is left out.
Picture TakePicture(const RECT& whole);
// Of a window with its frame, as soon as it has stopped drawing; what moves all the time is taken as it is
// after some seconds.
Picture TakePictureWhenStill(HWND window);
// Of a system icon such as IDI_QUESTION in its own size, drawn on the background of dialogs.
Picture DrawSystemIcon(const char* icon);

// False when the file could not be written.
bool SavePng(const Picture& picture, const std::string& path);

#endif  // MOSAICON_TESTS_UI_SCREENSHOT_H_
