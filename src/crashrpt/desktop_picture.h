// A picture of the whole desktop, all monitors. Win32, GDI+.
#ifndef MOSAICON_CRASHRPT_DESKTOP_PICTURE_H_
#define MOSAICON_CRASHRPT_DESKTOP_PICTURE_H_

#include <string>

// Writes it to path as PNG. Returns what went wrong; empty when nothing did.
std::string WriteDesktopPicture(const std::string& path);

#endif  // MOSAICON_CRASHRPT_DESKTOP_PICTURE_H_
