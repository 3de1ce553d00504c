// What a file holds, in 64 letters (SHA-256). Any thread.
#ifndef MOSAICON_MIRROR_CHECKSUM_H_
#define MOSAICON_MIRROR_CHECKSUM_H_

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace mirror {

std::string ChecksumOf(std::string_view bytes);

// nullopt when it cannot be read to its end.
std::optional<std::string> ChecksumOfFile(const std::filesystem::path& path);

}  // namespace mirror

#endif  // MOSAICON_MIRROR_CHECKSUM_H_
