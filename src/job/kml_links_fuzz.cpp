// libFuzzer: any file must be rewritten or refused, without harm and without growing beyond what the
// links explain. Works in the current directory.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "job/kml_links.h"

namespace {

long SizeOf(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return -1;
  std::fseek(file, 0, SEEK_END);
  const long size = std::ftell(file);
  std::fclose(file);
  return size;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string path = "web.kml";
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) std::abort();
  if (size > 0 && std::fwrite(data, 1, size, file) != size) std::abort();
  std::fclose(file);

  const std::string url = "http://host/maps/";
  const std::string subFolder = size % 2 == 0 ? "/tile_12" : "";
  if (RewriteKmlLinks(path, url, subFolder) != 1) std::abort();
  if (SizeOf("temp_web.kml") != -1) std::abort();
  // Each "<href>" gains one prefix, and the last line may come twice.
  const long longest = 2 * static_cast<long>(size) + (2 + static_cast<long>(size) / 6) * 32;
  const long rewritten = SizeOf(path);
  if (rewritten < 0 || rewritten > longest) std::abort();
  return 0;
}
