// Takes the place of the shell's ShellExecuteA in a test program: nothing is opened, and the test sees what
// would have been. For tests.
#ifndef MOSAICON_JOB_TESTING_SHELL_CALLS_H_
#define MOSAICON_JOB_TESTING_SHELL_CALLS_H_

#include <ostream>
#include <string>
#include <vector>

struct ShellCall {
  std::string verb;
  std::string file;
  std::string parameters;
  std::string folder;
  int show = 0;

  bool operator==(const ShellCall&) const = default;
};

std::ostream& operator<<(std::ostream& out, const ShellCall& call);

// Since the last time; in the order of the calls.
std::vector<ShellCall> TakeShellCalls();

#endif  // MOSAICON_JOB_TESTING_SHELL_CALLS_H_
