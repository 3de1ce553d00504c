#include "files/wide_text.h"

#include <windows.h>

namespace {

std::wstring Widen(UINT codePage, const std::string& text) {
  const int size = static_cast<int>(text.size());
  const int length = MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0);
  std::wstring wide(static_cast<size_t>(length), L'\0');
  MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), length);
  return wide;
}

std::string Narrow(UINT codePage, const std::wstring& wide) {
  const int size = static_cast<int>(wide.size());
  const int length = WideCharToMultiByte(codePage, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<size_t>(length), '\0');
  WideCharToMultiByte(codePage, 0, wide.data(), size, text.data(), length, nullptr, nullptr);
  return text;
}

}  // namespace

std::wstring WideFromAnsi(const std::string& ansi) {
  return Widen(CP_ACP, ansi);
}

std::string AnsiFromWide(const std::wstring& wide) {
  return Narrow(CP_ACP, wide);
}

std::wstring WideFromUtf8(const std::string& utf8) {
  return Widen(CP_UTF8, utf8);
}

std::string Utf8FromWide(const std::wstring& wide) {
  return Narrow(CP_UTF8, wide);
}
