#include <windows.h>

#include "job/utf8_text.h"

std::string AnsiFromUtf8(const std::string& utf8) {
  // Neither form has more characters than UTF-8 has bytes.
  std::wstring wide(utf8.size() + 1, L'\0');
  const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(),
                                         static_cast<int>(wide.size()));
  std::string ansi(utf8.size() + 1, '\0');
  ansi.resize(static_cast<size_t>(WideCharToMultiByte(CP_ACP, 0, wide.data(), length, ansi.data(),
                                                      static_cast<int>(ansi.size()), nullptr, nullptr)));
  return ansi;
}
