// Text between the ANSI code page of Windows and the encodings of the outside world. Win32.
#ifndef MOSAICON_CRASHRPT_ANSI_TEXT_H_
#define MOSAICON_CRASHRPT_ANSI_TEXT_H_

#include <string>

std::wstring WideOfAnsi(const std::string& ansi);
std::string Utf8OfAnsi(const std::string& ansi);

#endif  // MOSAICON_CRASHRPT_ANSI_TEXT_H_
