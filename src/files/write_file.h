// Writes a file, as the system does it, and what it says when it fails.
#ifndef MOSAICON_FILES_WRITE_FILE_H_
#define MOSAICON_FILES_WRITE_FILE_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace files {

// All of its content, in place of what was there. What a failure leaves is the caller's to remove. Any
// thread.
std::error_code WriteFile(const std::filesystem::path& path, std::string_view content);

// Its parent exists. One that is there already is as good.
std::error_code MakeFolder(const std::filesystem::path& path);

// Gives a file another name in the same folder, in place of a file that has it already.
std::error_code MoveFileOver(const std::filesystem::path& source, const std::filesystem::path& target);

// A file that this process alone writes as long as it has it open; others may read it. One thread at a time.
class LockedFile {
 public:
  LockedFile() = default;
  ~LockedFile();
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;

  // Opens a file that is there, or makes one. std::errc::device_or_resource_busy: another process, or another
  // object of this one, has it open. Where the file system knows no locks, nobody is kept out.
  std::error_code Open(const std::filesystem::path& path);
  bool IsOpen() const { return m_file != kNone; }
  // The rest is for an open file. All that it holds.
  std::string Content() const;
  std::error_code CutTo(std::size_t bytes);
  std::error_code Append(std::string_view text);
  // Some file systems say only now that there is no room.
  std::error_code Close();

 private:
  static constexpr std::intptr_t kNone = -1;
  std::intptr_t m_file = kNone;  // descriptor or handle
};

// For the user: UTF-8, without a full stop.
std::string WordsFor(const std::error_code& error);

// Whether it looks as if another program had the file open.
bool IsHeldOpen(const std::error_code& error);

}  // namespace files

#endif  // MOSAICON_FILES_WRITE_FILE_H_
