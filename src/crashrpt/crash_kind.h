// The thirteen kinds of crash, by the numbers that reports and flags use. Portable.
#ifndef MOSAICON_CRASHRPT_CRASH_KIND_H_
#define MOSAICON_CRASHRPT_CRASH_KIND_H_

#include <cstdint>

enum class CrashKind : uint32_t {
  kStructuredException = 0,
  kTerminate = 1,
  kUnexpected = 2,
  kPureVirtual = 3,
  kNewFault = 4,
  kBufferOverrun = 5,
  kInvalidParameter = 6,
  kSigAbrt = 7,
  kSigFpe = 8,
  kSigIll = 9,
  kSigInt = 10,
  kSigSegv = 11,
  kSigTerm = 12,
};
inline constexpr uint32_t kCrashKinds = 13;

// What Windows raises when it finds the heap damaged (STATUS_HEAP_CORRUPTION).
inline constexpr uint32_t kHeapCorruptionCode = 0xC0000374;
// Exception codes that stand for a kind of their own (STATUS_STACK_BUFFER_OVERRUN,
// STATUS_INVALID_CRUNTIME_PARAMETER).
inline constexpr uint32_t kBufferOverrunCode = 0xC0000409;
inline constexpr uint32_t kInvalidParameterCode = 0xC0000417;

// The flag that turns the handler for this kind on.
constexpr uint32_t CrashFlag(CrashKind kind) {
  return 1U << static_cast<uint32_t>(kind);
}

// The exception code in reports of crashes that are no structured exception: an error code of an
// application (0xE...), "CR" and the kind.
constexpr uint32_t MadeUpCode(CrashKind kind) {
  return 0xE0435200U + static_cast<uint32_t>(kind);
}

// In words; "unknown" for a number that is none of the thirteen.
const char* CrashKindName(CrashKind kind);

// Which kind a structured exception with this code is.
CrashKind KindOfException(uint32_t code);

#endif  // MOSAICON_CRASHRPT_CRASH_KIND_H_
