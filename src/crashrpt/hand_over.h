// What the program hands over to the sender: one block of shared memory, filled in at the installation
// as far as it can be, so that a crashed program has little left to do. Portable.
//
// Texts are in the ANSI code page, with their terminator. The program writes; the sender reads, and
// trusts nothing before IsSound said so. Both come from one build, which the signature says.
#ifndef MOSAICON_CRASHRPT_HAND_OVER_H_
#define MOSAICON_CRASHRPT_HAND_OVER_H_

#include <cstdint>
#include <string>

#include "crashrpt/property_area.h"

struct CrashInstallInfo;

inline constexpr uint32_t kHandOverSignature = 0x31525243;  // "CRR1"

// What happened; written by the thread that crashed.
struct CrashFacts {
  uint32_t kind;
  uint32_t exceptionCode;
  uint64_t exceptionAddress;
  uint64_t exceptionPointers;  // of type EXCEPTION_POINTERS*, in the crashed process
  uint64_t fileTime;           // 100 ns since 1601, UTC
  uint32_t processId;
  uint32_t threadId;
};

struct HandOver {
  uint32_t signature;
  uint32_t size;
  char applicationName[256];
  char applicationVersion[256];
  char emailTo[512];
  char emailSubject[1024];
  char emailText[4096];
  char uploadUrl[2048];  // empty: reports are not sent
  char privacyPolicyUrl[2048];
  char debugHelpDll[1024];
  char reportFolder[1024];  // empty: the default
  uint32_t dumpType;
  std::atomic<uint32_t> withPicture;
  PropertyArea properties;
  CrashFacts crash;
};

// Fills everything in but the crash, in a block of zeros. Returns false, with the reason, when a text
// is too long: nothing is cut. programName stands in for a missing application name.
bool FillHandOver(const CrashInstallInfo& info, const std::string& programName, HandOver& handOver,
                  std::string& error);

// Whether size bytes at handOver are a complete block whose texts all end.
bool IsSound(const HandOver& handOver, uint64_t size);

#endif  // MOSAICON_CRASHRPT_HAND_OVER_H_
