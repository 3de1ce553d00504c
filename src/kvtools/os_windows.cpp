#include <windows.h>

#include <string>

#include "kvtools/copy_bounded.h"
#include "kvtools/kvtools.h"
#include "kvtools/system_function.h"
#include "kvtools/system_text.h"

namespace {

constexpr char kVersionKey[] = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";

std::string RegisteredText(const char* name) {
  char text[256];
  DWORD size = sizeof text;
  const LSTATUS status =
      RegGetValueA(HKEY_LOCAL_MACHINE, kVersionKey, name, RRF_RT_REG_SZ, nullptr, text, &size);
  return status == ERROR_SUCCESS ? text : "";
}

// -1 when there is none.
int RegisteredNumber(const char* name) {
  DWORD number = 0;
  DWORD size = sizeof number;
  const LSTATUS status =
      RegGetValueA(HKEY_LOCAL_MACHINE, kVersionKey, name, RRF_RT_REG_DWORD, nullptr, &number, &size);
  return status == ERROR_SUCCESS ? static_cast<int>(number) : -1;
}

// GetVersionEx would tell the version that the program's manifest declares.
void AddVersion(OsFacts& facts) {
  using RtlGetVersionFunction = LONG(WINAPI*)(OSVERSIONINFOEXW*);
  const auto getVersion = FindSystemFunction<RtlGetVersionFunction>("ntdll.dll", "RtlGetVersion");
  OSVERSIONINFOEXW version = {};
  version.dwOSVersionInfoSize = sizeof version;
  if (getVersion == nullptr || getVersion(&version) != 0) return;
  facts.major = version.dwMajorVersion;
  facts.minor = version.dwMinorVersion;
  facts.build = version.dwBuildNumber;
  facts.server = version.wProductType != VER_NT_WORKSTATION;
  if (version.wServicePackMajor > 0) {
    facts.servicePack = "Service Pack " + std::to_string(version.wServicePackMajor);
  }
}

void AddRegisteredNames(OsFacts& facts) {
  facts.productName = RegisteredText("ProductName");
  facts.displayVersion = RegisteredText("DisplayVersion");
  // Its predecessor, which newer systems keep at its last value.
  if (facts.displayVersion.empty()) facts.displayVersion = RegisteredText("ReleaseId");
  facts.revision = RegisteredNumber("UBR");
}

// On an ARM machine the older function keeps up the appearance that it has an x86-64 processor.
Architecture NativeArchitecture() {
  using IsWow64Process2Function = BOOL(WINAPI*)(HANDLE, USHORT*, USHORT*);
  const auto isWow64Process2 = FindSystemFunction<IsWow64Process2Function>("kernel32.dll", "IsWow64Process2");
  USHORT process = 0;
  USHORT machine = 0;
  if (isWow64Process2 != nullptr && isWow64Process2(GetCurrentProcess(), &process, &machine) &&
      machine == IMAGE_FILE_MACHINE_ARM64) {
    return Architecture::k64BitArm;
  }
  SYSTEM_INFO system = {};
  GetNativeSystemInfo(&system);
  switch (system.wProcessorArchitecture) {
    case PROCESSOR_ARCHITECTURE_AMD64:
      return Architecture::k64Bit;
    case PROCESSOR_ARCHITECTURE_INTEL:
      return Architecture::k32Bit;
    default:
      return Architecture::kUnknown;
  }
}

std::string WineVersion() {
  using WineGetVersionFunction = const char*(__cdecl*)();
  const auto getVersion = FindSystemFunction<WineGetVersionFunction>("ntdll.dll", "wine_get_version");
  return getVersion != nullptr ? getVersion() : "";
}

}  // namespace

int KVT_GetOSInfo(char* buffer, int size) {
  OsFacts facts;
  AddVersion(facts);
  AddRegisteredNames(facts);
  facts.architecture = NativeArchitecture();
  facts.wineVersion = WineVersion();
  return CopyBounded(DescribeOs(facts), buffer, size);
}
