// Writes a file, as the system does it, and what it says when it fails.
#ifndef MOSAICON_TILER_WRITE_FILE_H_
#define MOSAICON_TILER_WRITE_FILE_H_

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace tiler {

// All of its content, in place of what was there. What a failure leaves is the caller's to remove. Any
// thread.
std::error_code WriteFile(const std::filesystem::path& path, std::string_view content);

// Its parent exists. One that is there already is as good.
std::error_code MakeFolder(const std::filesystem::path& path);

// Gives a file another name in the same folder, in place of a file that has it already.
std::error_code MoveFileOver(const std::filesystem::path& source, const std::filesystem::path& target);

// For the user: UTF-8, without a full stop.
std::string WordsFor(const std::error_code& error);

// Whether it looks as if another program had the file open.
bool IsHeldOpen(const std::error_code& error);

}  // namespace tiler

#endif  // MOSAICON_TILER_WRITE_FILE_H_
