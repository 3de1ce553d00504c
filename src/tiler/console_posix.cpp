#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <ctime>

#include "tiler/console.h"

namespace tiler {

namespace {

void (*g_stop)() = nullptr;

void HandleSignal(int) {
  g_stop();
}

}  // namespace

std::vector<std::string> Arguments(int argc, char** argv) {
  return {argv + std::min(1, argc), argv + argc};
}

std::filesystem::path PathFromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

void OnStop(void (*stop)()) {
  g_stop = stop;
  std::signal(SIGTERM, HandleSignal);
  std::signal(SIGINT, HandleSignal);
}

void LoadNothingFromElsewhere() {}

void AskNobody() {
  // A reader that has gone, and a file that may not grow, are told by the call that fails.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

StandardOutput::StandardOutput(const std::filesystem::path& log) : m_descriptor(dup(STDOUT_FILENO)) {
  int file = open(log.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  if (file < 0) file = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(file, STDOUT_FILENO);
  dup2(file, STDERR_FILENO);
  close(file);
}

bool StandardOutput::Write(const std::string& text) const {
  return write(m_descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

std::string LocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  std::array<char, 32> text = {};
  if (localtime_r(&now, &local) != nullptr) {
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
  }
  return text.data();
}

}  // namespace tiler
