// libFuzzer: any line gives an entry that keeps its bounds.

#include <cstdint>
#include <string>

#include "net/testing/listing_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string line = std::string(data, data + size).c_str();
  FtpDirEntry entry = SoiledEntry();
  ParseUnixListLine(line.c_str(), 2026, entry);
  CheckEntry(line, entry);
  if (entry.month < 1 || entry.month > 12) __builtin_trap();
  if ((entry.hour != 0 || entry.minute != 0) && entry.year != 2026) __builtin_trap();
  return 0;
}
