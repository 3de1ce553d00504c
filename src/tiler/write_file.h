// Writes a file, as the system does it.
#ifndef MOSAICON_TILER_WRITE_FILE_H_
#define MOSAICON_TILER_WRITE_FILE_H_

#include <filesystem>
#include <string_view>
#include <system_error>

namespace tiler {

// All of its content, in place of what was there. What a failure leaves is the caller's to remove. Any
// thread.
std::error_code WriteFile(const std::filesystem::path& path, std::string_view content);

}  // namespace tiler

#endif  // MOSAICON_TILER_WRITE_FILE_H_
