// What both fuzz targets for listing lines hold true of an entry.
#ifndef MOSAICON_NET_TESTING_LISTING_CHECK_H_
#define MOSAICON_NET_TESTING_LISTING_CHECK_H_

#include <cstring>
#include <string>

#include "net/ftp_listing.h"

// An entry whose every byte is set, so that a missing terminator is found.
inline FtpDirEntry SoiledEntry() {
  FtpDirEntry entry;
  std::memset(entry.name, '#', sizeof entry.name);
  return entry;
}

// The name is the end of the line, or the beginning of that end when it fills its field.
inline void CheckEntry(const std::string& line, const FtpDirEntry& entry) {
  const size_t length = strnlen(entry.name, sizeof entry.name);
  if (length == sizeof entry.name) __builtin_trap();
  const std::string name(entry.name, length);
  if (length + 1 < sizeof entry.name ? !line.ends_with(name) : line.find(name) == std::string::npos) {
    __builtin_trap();
  }
  if (!name.empty() && name[0] == ' ') __builtin_trap();
  if (entry.directory != 0 && entry.directory != 1) __builtin_trap();
  if (entry.next != nullptr) __builtin_trap();
}

#endif  // MOSAICON_NET_TESTING_LISTING_CHECK_H_
