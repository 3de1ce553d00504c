// Text of the tools, which is UTF-8, as the text of this program.
#ifndef MOSAICON_JOB_UTF8_TEXT_H_
#define MOSAICON_JOB_UTF8_TEXT_H_

#include <string>

// In the ANSI code page, with "?" or a similar letter for what it lacks. Natively the text itself.
std::string AnsiFromUtf8(const std::string& utf8);

#endif  // MOSAICON_JOB_UTF8_TEXT_H_
