// The environment of the process, which the tools of a job inherit. Failures are told by the result.
#ifndef MOSAICON_JOB_PROCESS_ENVIRONMENT_H_
#define MOSAICON_JOB_PROCESS_ENVIRONMENT_H_

#include <optional>
#include <string>

class ProcessEnvironment {
 public:
  virtual ~ProcessEnvironment() = default;
  // The value of a variable; nullopt when it is not set.
  virtual std::optional<std::string> Get(const std::string& name) = 0;
  virtual bool Set(const std::string& name, const std::string& value) = 0;
};

#endif  // MOSAICON_JOB_PROCESS_ENVIRONMENT_H_
