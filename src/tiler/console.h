// What the console program has from its system. All texts are UTF-8.
#ifndef MOSAICON_TILER_CONSOLE_H_
#define MOSAICON_TILER_CONSOLE_H_

#include <filesystem>
#include <string>
#include <vector>

namespace tiler {

// What follows the program's name on the command line.
std::vector<std::string> Arguments(int argc, char** argv);

// A variable that names a file or folder; empty when it is not set.
std::filesystem::path PathFromEnvironment(const char* name);

// Has stop called, by another thread or in a signal handler, when the program is asked to end.
void OnStop(void (*stop)());

// Libraries come from the program's and the system's folders only; elsewhere than on Windows they do anyway.
// To be called first of all.
void LoadNothingFromElsewhere();

// Nothing that goes wrong may open a window or wait for an answer.
void AskNobody();

// The standard output that the program was started with.
class StandardOutput {
 public:
  // Gives standard output and standard error to this file, to nobody when it cannot be opened: libraries
  // write to them as they like.
  explicit StandardOutput(const std::filesystem::path& log);

  // Returns when the text is written; false when nobody reads it. One thread at a time.
  bool Write(const std::string& text) const;

 private:
  int m_descriptor;
};

// "2026-04-01 09:30:00", of this place.
std::string LocalTime();

}  // namespace tiler

#endif  // MOSAICON_TILER_CONSOLE_H_
