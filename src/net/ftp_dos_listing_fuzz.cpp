// libFuzzer: any line gives an entry that keeps its bounds.

#include <cstdint>
#include <string>

#include "net/testing/listing_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string line = std::string(data, data + size).c_str();
  FtpDirEntry entry = SoiledEntry();
  ParseDosListLine(line.c_str(), entry);
  CheckEntry(line, entry);
  if (entry.year < 0 || entry.year > 9999) __builtin_trap();
  if (entry.month < 0 || entry.month > 99 || entry.day < 0 || entry.day > 99) __builtin_trap();
  if (entry.minute < 0 || entry.minute > 99) __builtin_trap();
  return 0;
}
