// mosaicon-publish: what mosaicon-batch --publish does, for Linux. Tests use it, and whoever makes maps
// there.
#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "batch/publish_command.h"
#include "files/path_text.h"

namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void HandleSignal(int /*signal*/) {
  g_interrupted = 1;
}

std::string FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::filesystem::path DataFolder() {
  const std::string given = FromEnvironment("MOSAICON_PUBLISH_DATA");
  if (!given.empty()) return given;
  const std::string state = FromEnvironment("XDG_STATE_HOME");
  const std::filesystem::path folder =
      state.empty() ? std::filesystem::path(FromEnvironment("HOME")) / ".local" / "state"
                    : std::filesystem::path(state);
  return folder / "mosaicon" / "publish";
}

int Run(const std::vector<std::string>& words) {
  PublishArguments arguments;
  const std::string problem = ParsePublishArguments(words, arguments);
  if (!problem.empty()) {
    std::cerr << "mosaicon-publish: " << problem << std::endl;
    return 2;
  }
  if (arguments.help) {
    std::cout << PublishHelp();
    return 0;
  }
  std::signal(SIGINT, HandleSignal);
  std::signal(SIGTERM, HandleSignal);
  std::signal(SIGPIPE, SIG_IGN);
  const PublishConsole console = {.out = std::cout,
                                  .problems = std::cerr,
                                  .isInterrupted = [] { return g_interrupted != 0; },
                                  .pathOf = [](const std::string& text) { return files::PathOf(text); },
                                  .shown = [](const std::string& text) { return text; }};
  const PublishSecrets secrets = {.password = FromEnvironment("MOSAICON_PUBLISH_PASSWORD"),
                                  .passphrase = FromEnvironment("MOSAICON_PUBLISH_PASSPHRASE")};
  return Publish(arguments, secrets, DataFolder(), console);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::exception& failure) {
    std::cerr << "mosaicon-publish: " << failure.what() << std::endl;
    return kPublishedInPart;
  }
}
