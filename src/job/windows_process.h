// What the running process is: its environment and its program. 8-bit Win32 functions; any thread.
#ifndef MOSAICON_JOB_WINDOWS_PROCESS_H_
#define MOSAICON_JOB_WINDOWS_PROCESS_H_

#include "job/process_environment.h"

class WindowsEnvironment : public ProcessEnvironment {
 public:
  std::optional<std::string> Get(const std::string& name) override;
  bool Set(const std::string& name, const std::string& value) override;
};

// Full path of the running executable.
std::string GetProgramPath();

#endif  // MOSAICON_JOB_WINDOWS_PROCESS_H_
