#include "crashrpt/crash_kind.h"

const char* CrashKindName(CrashKind kind) {
  static const char* const kNames[kCrashKinds] = {"structured exception",
                                                  "terminate call",
                                                  "unexpected call",
                                                  "pure virtual function call",
                                                  "new operator fault",
                                                  "buffer overrun",
                                                  "invalid parameter",
                                                  "SIGABRT",
                                                  "SIGFPE",
                                                  "SIGILL",
                                                  "SIGINT",
                                                  "SIGSEGV",
                                                  "SIGTERM"};
  const auto number = static_cast<uint32_t>(kind);
  return number < kCrashKinds ? kNames[number] : "unknown";
}

CrashKind KindOfException(uint32_t code) {
  if (code == kBufferOverrunCode) return CrashKind::kBufferOverrun;
  if (code == kInvalidParameterCode) return CrashKind::kInvalidParameter;
  return CrashKind::kStructuredException;
}
