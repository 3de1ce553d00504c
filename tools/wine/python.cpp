// python.exe for Linux hosts: runs the host's python3 on behalf of a Windows program under Wine.
//
// Test equipment. Windows has a Python of its own, so this program is never packaged for Windows.
//
// Wine can start a Unix program, but gives no handle to wait for, no exit code and no pipe. So this
// program listens on a loopback port and starts python_host.py, which calls back, gets arguments,
// current directory and environment, runs the script, and returns its output and exit code. The
// connection is also the life line: when it breaks, python_host.py ends the script and every
// process that the script has started.
//
// Standard output gets the script's standard output and standard error, in the order in which they
// were written, unbuffered. Exit code: the script's, 128 + n when signal n killed it, or one of
// those below with one line on standard error.

#include "host_agent.h"
#include "host_channel.h"
#include "unix_text.h"

#include <windows.h>

#include <charconv>
#include <chrono>
#include <exception>
#include <string>
#include <string_view>

#include "files/wide_text.h"

namespace {

using bridge::Frame;
using bridge::FrameKind;
using bridge::HostChannel;

constexpr int kOutputClosed = 120;  // what Python ends with when it cannot write its output
constexpr int kAgentLost = 125;
constexpr int kNotStarted = 126;

constexpr std::chrono::seconds kAgentTimeout{20};

// Blocks while the pipe is full. Without a handle the text goes nowhere, as in Python.
bool Write(DWORD standard_handle, std::string_view text) {
  const HANDLE file = GetStdHandle(standard_handle);
  if (file == nullptr || file == INVALID_HANDLE_VALUE) {
    return true;
  }
  while (!text.empty()) {
    DWORD written = 0;
    if (!WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr)) {
      return false;
    }
    text.remove_prefix(written);
  }
  return true;
}

int Fail(int exit_code, const std::string& reason) {
  Write(STD_ERROR_HANDLE, "python.exe: " + reason + "\r\n");
  return exit_code;
}

bool SendRequest(HostChannel& channel) {
  const auto directory = bridge::ToUnixPath(L".");
  bool sent = channel.Send(FrameKind::kDirectory, directory.value_or("/"));
  for (const bridge::Argument& argument : bridge::ScriptArguments(GetCommandLineW())) {
    sent = sent &&
           channel.Send(argument.is_path ? FrameKind::kPathArgument : FrameKind::kArgument, argument.text);
  }
  for (const wchar_t* name : {L"MOSAICON_TILER_LOG", L"LOCALAPPDATA", L"TEMP", L"TMP"}) {
    if (const auto value = bridge::EnvironmentValue(name)) {
      sent = sent && channel.Send(FrameKind::kVariable,
                                  Utf8FromWide(name) + "=" + bridge::ToUnixPath(*value).value_or(""));
    }
  }
  return sent && channel.Send(FrameKind::kGo);
}

int ForwardOutput(HostChannel& channel) {
  Frame frame;
  while (channel.Receive(frame)) {
    if (frame.kind == FrameKind::kOutput) {
      if (!Write(STD_OUTPUT_HANDLE, frame.payload)) {
        return kOutputClosed;
      }
    } else if (frame.kind == FrameKind::kExit) {
      int code = kAgentLost;
      std::from_chars(frame.payload.data(), frame.payload.data() + frame.payload.size(), code);
      return code;
    } else if (frame.kind == FrameKind::kFailure) {
      return Fail(kNotStarted, frame.payload);
    } else {
      break;
    }
  }
  return Fail(kAgentLost, "lost the connection to the script");
}

int Run() {
  if (!bridge::RunsUnderWine()) {
    return Fail(kNotStarted, "this program works under Wine only");
  }
  HostChannel channel;
  if (!channel.Listen()) {
    return Fail(kNotStarted, "cannot open a loopback port");
  }
  const std::string token = bridge::RandomToken();
  const std::string problem = bridge::StartAgent(channel.Port(), token);
  if (!problem.empty()) {
    return Fail(kNotStarted, problem);
  }
  if (!channel.AwaitAgent(token, kAgentTimeout)) {
    return Fail(kNotStarted, "the host's Python does not answer");
  }
  if (!SendRequest(channel)) {
    return Fail(kNotStarted, "the host's Python has hung up");
  }
  return ForwardOutput(channel);
}

}  // namespace

int main() {
  try {
    return Run();
  } catch (const std::exception& error) {
    return Fail(kNotStarted, error.what());
  }
}
