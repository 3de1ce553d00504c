#include "job/testing/shell_calls.h"

#include <windows.h>

#include <utility>

namespace {

constexpr INT_PTR kShellSucceeded = 33;

std::vector<ShellCall> g_calls;

std::string Text(const char* text) {
  return text != nullptr ? text : "";
}

HINSTANCE WINAPI Record(HWND /*owner*/, LPCSTR verb, LPCSTR file, LPCSTR parameters, LPCSTR folder,
                        INT show) {
  g_calls.push_back({Text(verb), Text(file), Text(parameters), Text(folder), show});
  return reinterpret_cast<HINSTANCE>(kShellSucceeded);
}

}  // namespace

// What a call of the imported function goes through; the linker takes this one before the library's.
extern "C" decltype(&Record) const __imp_ShellExecuteA = Record;

std::ostream& operator<<(std::ostream& out, const ShellCall& call) {
  return out << call.verb << " \"" << call.file << "\" with \"" << call.parameters << "\" in \""
             << call.folder << "\", shown as " << call.show;
}

std::vector<ShellCall> TakeShellCalls() {
  return std::exchange(g_calls, {});
}
