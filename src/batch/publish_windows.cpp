#include "batch/publish_windows.h"

#include <windows.h>

// Behind windows.h.
#include <wincred.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>

#include "batch/publish_arguments.h"
#include "batch/publish_command.h"
#include "files/path_text.h"
#include "files/utf8_text.h"
#include "files/wide_text.h"
#include "handles/keep_awake.h"

namespace {

constexpr int kWrongArguments = 2;
constexpr DWORD kLongestPassword = 512;  // letters

// Set by the thread on which the system reports Ctrl+C.
std::atomic<bool> g_isInterrupted = false;

BOOL WINAPI OnConsoleControl(DWORD /*event*/) noexcept {
  g_isInterrupted = true;
  return TRUE;
}

struct CredentialFreer {
  void operator()(CREDENTIALW* credential) const { CredFree(credential); }
};

// UTF-8; empty when it is not set.
std::string FromEnvironment(const wchar_t* name) {
  const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
  std::wstring value(size, L'\0');
  value.resize(GetEnvironmentVariableW(name, value.data(), size));
  return Utf8FromWide(value);
}

// Without showing it; empty where nobody can type.
std::string AskForPassword(const std::string& place) {
  HANDLE console = GetStdHandle(STD_INPUT_HANDLE);
  DWORD mode = 0;
  if (!GetConsoleMode(console, &mode)) return "";
  std::cerr << "Password for " << AnsiFromUtf8(place) << ": " << std::flush;
  SetConsoleMode(console, (mode | ENABLE_LINE_INPUT | ENABLE_PROCESSED_INPUT) & ~ENABLE_ECHO_INPUT);
  std::array<wchar_t, kLongestPassword> typed = {};
  DWORD count = 0;
  ReadConsoleW(console, typed.data(), kLongestPassword, &count, nullptr);
  SetConsoleMode(console, mode);
  std::cerr << std::endl;
  std::wstring password(typed.data(), count);
  SecureZeroMemory(typed.data(), sizeof typed);
  while (password.ends_with(L'\n') || password.ends_with(L'\r')) password.pop_back();
  return Utf8FromWide(password);
}

// Where its passwords come from, in this order: the environment, a file or key that was named, the system, a
// person.
PublishSecrets FindSecrets(PublishArguments& arguments) {
  PublishSecrets secrets = {.password = FromEnvironment(L"MOSAICON_PUBLISH_PASSWORD"),
                            .passphrase = FromEnvironment(L"MOSAICON_PUBLISH_PASSPHRASE")};
  mirror::PublishAddress& address = arguments.address;
  if (address.scheme == mirror::Scheme::kFile || !secrets.password.empty()) return secrets;
  if (!arguments.netrcFile.empty() || !arguments.keyFile.empty() || arguments.useAgent) return secrets;
  if (address.user.empty()) address.user = arguments.user;
  if (const auto stored = FindStoredLogin(address)) {
    address.user = stored->user;
    secrets.password = stored->password;
  } else {
    secrets.password = AskForPassword(address.Text());
  }
  return secrets;
}

std::filesystem::path DataFolder() {
  const std::string given = FromEnvironment(L"MOSAICON_PUBLISH_DATA");
  if (!given.empty()) return files::PathOf(given);
  return files::PathOf(FromEnvironment(L"LOCALAPPDATA")) / "Mosaicon" / "Publish";
}

}  // namespace

std::optional<StoredLogin> FindStoredLogin(const mirror::PublishAddress& address) {
  CREDENTIALW* found = nullptr;
  const std::wstring target = WideFromUtf8("Mosaicon/" + address.host);
  if (!CredReadW(target.c_str(), CRED_TYPE_GENERIC, 0, &found)) return std::nullopt;
  const std::unique_ptr<CREDENTIALW, CredentialFreer> credential(found);
  const std::string user = found->UserName == nullptr ? "" : Utf8FromWide(found->UserName);
  if (!address.user.empty() && address.user != user) return std::nullopt;
  const auto* letters = reinterpret_cast<const wchar_t*>(found->CredentialBlob);
  const std::wstring password(letters, found->CredentialBlobSize / sizeof(wchar_t));
  return StoredLogin{.user = user, .password = Utf8FromWide(password)};
}

int PublishFromCommandLine(const std::vector<std::string>& words) {
  std::vector<std::string> texts;
  std::transform(words.begin(), words.end(), std::back_inserter(texts), Utf8FromAnsi);
  PublishArguments arguments;
  const std::string problem = ParsePublishArguments(texts, arguments);
  if (!problem.empty()) {
    std::cerr << "mosaicon-batch: " << AnsiFromUtf8(problem)
              << "\nTry mosaicon-batch --publish ftp://host/ --help" << std::endl;
    return kWrongArguments;
  }
  if (arguments.help) {
    std::cout << PublishHelp();
    return kPublished;
  }
  SetConsoleCtrlHandler(OnConsoleControl, TRUE);
  const KeepAwake awake;
  const PublishSecrets secrets = FindSecrets(arguments);
  return Publish(arguments, secrets, DataFolder(),
                 {.out = std::cout,
                  .problems = std::cerr,
                  .isInterrupted = [] { return g_isInterrupted.load(); },
                  .pathOf = [](const std::string& text) { return files::PathOf(text); },
                  .shown = AnsiFromUtf8});
}
