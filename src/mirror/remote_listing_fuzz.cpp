// libFuzzer: any text gives entries whose names can do no harm.

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "mirror/listing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(data, data + size);
  std::set<std::string> names;
  for (const mirror::RemoteEntry& entry : mirror::ParseListing(text).entries) {
    if (!mirror::IsName(entry.name) || !names.insert(entry.name).second) __builtin_trap();
    if (text.find(entry.name) == std::string::npos) __builtin_trap();
  }
  return 0;
}
