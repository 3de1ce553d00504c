// Wide text, for the functions of Windows that take no other. What the ANSI code page lacks becomes "?" or a
// similar letter there, what is no valid text a replacement character; null characters are letters like
// others. Win32.
#ifndef MOSAICON_FILES_WIDE_TEXT_H_
#define MOSAICON_FILES_WIDE_TEXT_H_

#include <string>

std::wstring WideFromAnsi(const std::string& ansi);
std::string AnsiFromWide(const std::wstring& wide);
std::wstring WideFromUtf8(const std::string& utf8);
std::string Utf8FromWide(const std::wstring& wide);

#endif  // MOSAICON_FILES_WIDE_TEXT_H_
