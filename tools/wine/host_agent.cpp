#include "host_agent.h"

#include "unix_text.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <random>

#include "files/wide_text.h"
#include "handles/unique_handle.h"

namespace bridge {
namespace {

constexpr wchar_t kAgentName[] = L"python_host.py";
constexpr wchar_t kDefaultInterpreter[] = L"/usr/bin/python3";

std::wstring AgentPath() {
  std::array<wchar_t, 32768> program{};
  const DWORD length = GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
  std::wstring path(program.data(), length);
  path.resize(path.rfind(L'\\') + 1);
  return path + kAgentName;
}

// Windows name of a Unix file, good for any file of the host, whatever drives Wine has.
std::wstring WindowsNameOf(std::wstring unix_path) {
  std::replace(unix_path.begin(), unix_path.end(), L'/', L'\\');
  return L"\\\\?\\unix" + unix_path;
}

}  // namespace

std::string RandomToken() {
  constexpr char kDigits[] = "0123456789abcdef";
  std::random_device random;
  std::string token(32, '0');
  for (char& digit : token) {
    digit = kDigits[random() & 0xF];
  }
  return token;
}

std::string StartAgent(unsigned short port, const std::string& token) {
  const std::wstring agent = AgentPath();
  const auto agent_unix = ToUnixPath(agent);
  if (!agent_unix || GetFileAttributesW(agent.c_str()) == INVALID_FILE_ATTRIBUTES) {
    return "cannot find " + Utf8FromWide(agent);
  }
  const std::wstring interpreter = EnvironmentValue(L"MOSAICON_HOST_PYTHON").value_or(kDefaultInterpreter);
  if (!interpreter.starts_with(L'/')) {
    return "MOSAICON_HOST_PYTHON is no absolute Unix path: " + Utf8FromWide(interpreter);
  }

  // The full path as the first word: Python finds its own files from there. Isolated, so that
  // variables meant for the script do not change the agent.
  std::wstring command_line = L"\"" + interpreter + L"\" -I \"" + WideFromUtf8(*agent_unix) + L"\" " +
                              std::to_wstring(port) + L" " + WideFromUtf8(token);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(WindowsNameOf(interpreter).c_str(), command_line.data(), nullptr, nullptr, FALSE,
                      CREATE_NO_WINDOW, nullptr, nullptr, &startup, &process)) {
    return "cannot start " + Utf8FromWide(interpreter) + " (error " + std::to_string(GetLastError()) + ")";
  }
  // Wine has none for a Unix program.
  const UniqueHandle started(process.hProcess);
  const UniqueHandle thread(process.hThread);
  return {};
}

}  // namespace bridge
