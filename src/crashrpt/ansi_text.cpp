#include "crashrpt/ansi_text.h"

#include <windows.h>

std::wstring WideOfAnsi(const std::string& ansi) {
  const int length = static_cast<int>(ansi.size());
  std::wstring wide(MultiByteToWideChar(CP_ACP, 0, ansi.c_str(), length, nullptr, 0), L'\0');
  MultiByteToWideChar(CP_ACP, 0, ansi.c_str(), length, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string Utf8OfAnsi(const std::string& ansi) {
  const std::wstring wide = WideOfAnsi(ansi);
  const int length = static_cast<int>(wide.size());
  std::string utf8(WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), length, nullptr, 0, nullptr, nullptr), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), length, utf8.data(), static_cast<int>(utf8.size()), nullptr,
                      nullptr);
  return utf8;
}
