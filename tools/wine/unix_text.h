// Windows text as the Linux host wants it: UTF-8 arguments and Unix paths.
//
// Works under Wine only: the translation of paths is Wine's own, found at run time. All functions
// may be called from any thread and keep nothing between calls.
#ifndef MOSAICON_TOOLS_WINE_UNIX_TEXT_H
#define MOSAICON_TOOLS_WINE_UNIX_TEXT_H

#include <optional>
#include <string>
#include <vector>

namespace bridge {

struct Argument {
  std::string text;  // UTF-8
  bool is_path;      // translated from an absolute Windows path
};

bool RunsUnderWine();

// Arguments behind the program name of a raw command line. A line that begins with a blank has the
// empty text as its program name. Absolute Windows paths come as Unix paths, everything else as is.
std::vector<Argument> ScriptArguments(const std::wstring& command_line);

// Unix path of a Windows path, which need not exist: the longest part that exists is translated,
// the rest appended. Relative paths start at the current directory. A closing separator is kept.
// Nothing for paths without a Unix side: network shares, devices, unknown drives.
std::optional<std::string> ToUnixPath(const std::wstring& path);

// Value of an environment variable; nothing when it is not set or empty.
std::optional<std::wstring> EnvironmentValue(const wchar_t* name);

}  // namespace bridge

#endif
