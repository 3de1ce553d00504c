#include "ui/slowness.h"

#include <windows.h>

#include <algorithm>

namespace {

constexpr ULONGLONG kSample = 200;  // ms of processor

ULONGLONG Milliseconds(const FILETIME& time) {
  return (static_cast<ULONGLONG>(time.dwHighDateTime) << 32 | time.dwLowDateTime) / 10000;
}

// What this program has used of the processors so far, in ms.
ULONGLONG Used() {
  FILETIME created, ended, kernel, user;
  if (!GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user)) return 0;
  return Milliseconds(kernel) + Milliseconds(user);
}

}  // namespace

double Slowness() {
  const ULONGLONG start = GetTickCount64();
  const ULONGLONG before = Used();
  ULONGLONG used = 0;
  while (used < kSample && GetTickCount64() - start < 100 * kSample) used = Used() - before;
  const auto took = static_cast<double>(GetTickCount64() - start);
  return std::max(1.0, took / static_cast<double>(std::max(used, 1ULL)));
}
