// libFuzzer: any text gives no bracket, or an address that is one and a port within its bounds.

#include <cstdint>
#include <cstdio>
#include <string>

#include "net/ftp_pasv.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(data, data + size);
  const PasvResult result = ParsePasvReply(text.c_str());
  if (result.hasBracket != (text.substr(0, text.find('\0')).find('(') != std::string::npos)) __builtin_trap();
  if (result.port < 0 || result.port > 65535 * 257) __builtin_trap();
  if (!result.hasBracket && (result.port != 0 || !result.address.empty())) __builtin_trap();
  if (result.address.empty()) return 0;

  unsigned bytes[4] = {};
  if (std::sscanf(result.address.c_str(), "%u.%u.%u.%u", &bytes[0], &bytes[1], &bytes[2], &bytes[3]) != 4) {
    __builtin_trap();
  }
  std::string again;
  for (const unsigned byte : bytes) {
    if (byte > 255) __builtin_trap();
    again += (again.empty() ? "" : ".") + std::to_string(byte);
  }
  if (again != result.address) __builtin_trap();
  return 0;
}
