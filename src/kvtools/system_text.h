// How facts about the machine are put into words. Other files gather the facts. Portable; any thread.
#ifndef MOSAICON_KVTOOLS_SYSTEM_TEXT_H_
#define MOSAICON_KVTOOLS_SYSTEM_TEXT_H_

#include <cstdint>
#include <string>
#include <vector>

#include "kvtools/screen_geometry.h"

enum class Architecture { kUnknown, k32Bit, k64Bit, k64BitArm };

// Whatever is not known stays as it is here.
struct OsFacts {
  unsigned major = 0;
  unsigned minor = 0;
  unsigned build = 0;
  int revision = -1;  // counts the updates of one build
  bool server = false;
  std::string productName;     // as the system's own registration has it
  std::string displayVersion;  // "22H2", in older systems "1909"
  std::string servicePack;     // "Service Pack 1"
  Architecture architecture = Architecture::kUnknown;
  std::string wineVersion;  // "8.0"; empty on Windows itself
};

struct DisplayDevice {
  std::string description;
  std::string key;  // registry path: one folder for each adapter, one entry in it for each output
  bool mirrorsOnly = false;
};

std::string DescribeOs(const OsFacts& facts);
std::string DescribePixelDepth(unsigned bits);
std::string DescribeResolution(PixelSize primary, PixelSize desktop);
std::string DescribeMemory(uint64_t totalBytes, uint64_t availableBytes);

// One description for each adapter, in the order of the devices.
std::vector<std::string> AdapterDescriptions(const std::vector<DisplayDevice>& devices);

// Where a version resource keeps the "FileVersion" text of one translation.
std::string FileVersionPath(unsigned language, unsigned codePage);

#endif  // MOSAICON_KVTOOLS_SYSTEM_TEXT_H_
