// Text of others, which is UTF-8, and text of this program.
#ifndef MOSAICON_FILES_UTF8_TEXT_H_
#define MOSAICON_FILES_UTF8_TEXT_H_

#include <string>

// To and from the ANSI code page, with "?" or a similar letter for what it lacks. Natively the text itself.
std::string AnsiFromUtf8(const std::string& utf8);
std::string Utf8FromAnsi(const std::string& ansi);

#endif  // MOSAICON_FILES_UTF8_TEXT_H_
