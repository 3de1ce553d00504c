#include "unix_text.h"

#include <windows.h>

#include <shellapi.h>

#include <memory>
#include <string_view>

#include "files/wide_text.h"

namespace bridge {
namespace {

constexpr std::wstring_view kVerbatim = L"\\\\?\\";

using UnixFileName = char*(CDECL*)(const wchar_t*);

UnixFileName WineUnixFileName() {
  const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
  // Through void*: the compiler rightly warns of a direct cast between function types.
  return reinterpret_cast<UnixFileName>(
      reinterpret_cast<void*>(GetProcAddress(kernel, "wine_get_unix_file_name")));
}

bool IsSeparator(wchar_t c) {
  return c == L'\\' || c == L'/';
}

bool StartsWithDrive(std::wstring_view text) {
  return text.size() >= 3 && ((text[0] >= L'A' && text[0] <= L'Z') || (text[0] >= L'a' && text[0] <= L'z')) &&
         text[1] == L':' && IsSeparator(text[2]);
}

bool IsAbsolutePath(std::wstring_view text) {
  return StartsWithDrive(text) || text.starts_with(kVerbatim);
}

std::wstring FullPath(const std::wstring& path) {
  std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
  full.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  return full;
}

// Length of the part that names no folder: "Z:\", "\\?\Z:\", "\\?\unix\". 0: no such part.
std::size_t RootLength(std::wstring_view path) {
  const std::size_t start = path.starts_with(kVerbatim) ? kVerbatim.size() : 0;
  const std::wstring_view rest = path.substr(start);
  if (StartsWithDrive(rest)) {
    return start + 3;
  }
  constexpr std::wstring_view kUnix = L"unix\\";
  return start != 0 && rest.starts_with(kUnix) ? start + kUnix.size() : 0;
}

}  // namespace

bool RunsUnderWine() {
  return WineUnixFileName() != nullptr;
}

std::vector<Argument> ScriptArguments(const std::wstring& command_line) {
  std::vector<Argument> arguments;
  int count = 0;
  // Of a line that begins with a blank the first word is empty, so the script is always second.
  const std::unique_ptr<wchar_t*, decltype(&LocalFree)> words(
      CommandLineToArgvW(command_line.c_str(), &count), LocalFree);
  for (int i = 1; words && i < count; ++i) {
    const std::wstring word = words.get()[i];
    const auto path = IsAbsolutePath(word) ? ToUnixPath(word) : std::nullopt;
    arguments.push_back({path ? *path : Utf8FromWide(word), path.has_value()});
  }
  return arguments;
}

std::optional<std::string> ToUnixPath(const std::wstring& path) {
  std::wstring existing = FullPath(path);
  const std::size_t root = RootLength(existing);
  if (root == 0) {
    return std::nullopt;
  }
  std::wstring missing;
  if (existing.size() > root && existing.back() == L'\\') {
    existing.pop_back();
    missing = L"/";
  }
  while (GetFileAttributesW(existing.c_str()) == INVALID_FILE_ATTRIBUTES) {
    if (existing.size() <= root) {
      return std::nullopt;
    }
    const std::size_t cut = existing.rfind(L'\\');
    missing.insert(0, L"/" + existing.substr(cut + 1));
    existing.resize(cut < root ? root : cut);
  }
  const std::unique_ptr<char, void (*)(char*)> unix_name(
      WineUnixFileName()(existing.c_str()), [](char* name) { HeapFree(GetProcessHeap(), 0, name); });
  if (!unix_name) {
    return std::nullopt;
  }
  std::string result = unix_name.get();
  if (result.ends_with('/') && !missing.empty()) {
    result.pop_back();
  }
  return result + Utf8FromWide(missing);
}

std::optional<std::wstring> EnvironmentValue(const wchar_t* name) {
  const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
  if (size <= 1) {
    return std::nullopt;
  }
  std::wstring value(size, L'\0');
  value.resize(GetEnvironmentVariableW(name, value.data(), size));
  return value;
}

}  // namespace bridge
