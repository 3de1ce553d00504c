// libFuzzer: any text gives files that are written and read again the same, and lead nowhere else.

#include <cstdint>
#include <string>

#include "mirror/manifest.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string place = "ftp://a/b";
  const std::string text = mirror::ManifestOf({}, place) + std::string(data, data + size);
  const mirror::SentFiles files = mirror::ParseManifest(text, place);
  for (const auto& [path, file] : files) {
    if (path.empty() || path.front() == '/' || ("/" + path + "/").find("/../") != std::string::npos)
      __builtin_trap();
    if (file.checksum.size() != 64) __builtin_trap();
  }
  if (mirror::ParseManifest(mirror::ManifestOf(files, place), place) != files) __builtin_trap();
  return 0;
}
