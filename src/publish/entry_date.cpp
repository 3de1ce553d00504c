#include "publish/entry_date.h"

#include <cstdio>

std::string FormatEntryDate(const FtpDirEntry& entry) {
  char text[64];  // five numbers of up to 11 characters each
  std::snprintf(text, sizeof text, "%2.2d/%2.2d/%2.2d %2.2d:%2.2d", entry.year, entry.month, entry.day,
                entry.hour, entry.minute);
  return text;
}
