#include "kvtools/system_text.h"

#include <cstdio>
#include <set>
#include <string_view>

namespace {

// Windows 11 registers itself as Windows 10; only its build tells.
constexpr unsigned kFirstWindows11Build = 22000;
constexpr uint64_t kBytesPerMegabyte = uint64_t{1} << 20;

struct KnownSystem {
  unsigned major;
  unsigned minor;
  const char* name;
};

constexpr KnownSystem kKnownSystems[] = {
    {6, 1, "Windows 7"}, {6, 2, "Windows 8"}, {6, 3, "Windows 8.1"}, {10, 0, "Windows 10"}};

std::string NameByVersion(const OsFacts& facts) {
  if (facts.server) return "Windows Server";
  for (const KnownSystem& each : kKnownSystems) {
    if (each.major == facts.major && each.minor == facts.minor) return each.name;
  }
  if (facts.major == 0) return "Windows";
  return "Windows " + std::to_string(facts.major) + "." + std::to_string(facts.minor);
}

std::string ProductName(const OsFacts& facts) {
  constexpr std::string_view kMaker = "Microsoft ";
  constexpr std::string_view kWindows10 = "Windows 10";
  std::string name = facts.productName;
  if (name.starts_with(kMaker)) name.erase(0, kMaker.size());
  if (name.empty()) name = NameByVersion(facts);
  if (facts.build >= kFirstWindows11Build && name.starts_with(kWindows10)) {
    name.replace(0, kWindows10.size(), "Windows 11");
  }
  return name;
}

std::string Build(const OsFacts& facts) {
  std::string text = std::to_string(facts.build);
  if (facts.revision >= 0) text += "." + std::to_string(facts.revision);
  return text;
}

const char* Bits(Architecture architecture) {
  switch (architecture) {
    case Architecture::k32Bit:
      return ", 32 bit";
    case Architecture::k64Bit:
      return ", 64 bit";
    case Architecture::k64BitArm:
      return ", 64 bit (ARM)";
    case Architecture::kUnknown:
      break;
  }
  return "";
}

std::string Describe(PixelSize size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height);
}

}  // namespace

std::string DescribeOs(const OsFacts& facts) {
  std::string text = ProductName(facts);
  if (!facts.displayVersion.empty()) text += " " + facts.displayVersion;
  if (!facts.servicePack.empty()) text += " " + facts.servicePack;
  if (facts.build != 0) text += " (build " + Build(facts) + ")";
  text += Bits(facts.architecture);
  if (!facts.wineVersion.empty()) text += ", Wine " + facts.wineVersion;
  return text;
}

std::string DescribePixelDepth(unsigned bits) {
  return std::to_string(bits) + " bit";
}

std::string DescribeResolution(PixelSize primary, PixelSize desktop) {
  std::string text = Describe(primary);
  if (desktop != primary) text += ", virtual desktop " + Describe(desktop);
  return text;
}

std::string DescribeMemory(uint64_t totalBytes, uint64_t availableBytes) {
  return std::to_string(totalBytes / kBytesPerMegabyte) + " MB total, " +
         std::to_string(availableBytes / kBytesPerMegabyte) + " MB available";
}

std::vector<std::string> AdapterDescriptions(const std::vector<DisplayDevice>& devices) {
  std::vector<std::string> descriptions;
  std::set<std::string> seen;
  for (const DisplayDevice& each : devices) {
    if (each.mirrorsOnly) continue;
    // Two cards of one model have the same description, so the folder tells them apart.
    const std::string adapter = each.key.substr(0, each.key.rfind('\\'));
    if (seen.insert(adapter.empty() ? each.description : adapter).second) {
      descriptions.push_back(each.description);
    }
  }
  return descriptions;
}

std::string FileVersionPath(unsigned language, unsigned codePage) {
  char path[48];
  std::snprintf(path, sizeof path, "\\StringFileInfo\\%04X%04X\\FileVersion", language & 0xFFFFU,
                codePage & 0xFFFFU);
  return path;
}
