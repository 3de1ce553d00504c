// Test program: crashrpt_provoker PROCESS_ID KIND makes that process crash and prints the id of the
// thread that does.

#include <cstdio>
#include <cstdlib>

#include "crashrpt/testing/provoke_crash.h"
#include "handles/unique_handle.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const UniqueHandle process(OpenProcess(PROCESS_ALL_ACCESS, FALSE, std::strtoul(argv[1], nullptr, 10)));
  const ProvokedCrash crash = ProvokeCrash(process.get(), std::atoi(argv[2]));
  std::printf("%lu %s\n", crash.threadId, crash.error.c_str());
  return crash.threadId != 0 ? 0 : 1;
}
