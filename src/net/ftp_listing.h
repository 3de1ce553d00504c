// Understands the lines in which servers list a folder. There are two styles:
//
//   -rw-r--r--   1 ann  users     4321 Mar 07 14:05 a name.txt    (Unix, with or without the group)
//   03-07-05  02:05PM                 4321 a name.txt              (DOS)
//
// Fields are runs of characters between blanks. Nothing fails: what a line does not have stays at its
// default, and numbers are not checked against the calendar. A number is the digits, with a sign before
// them if need be, that a field begins with; one beyond 32 bits counts as the nearest that fits, so a
// file of 2 GiB and more has size 2147483647. Names are cut to their field. Portable; any thread.
#ifndef MOSAICON_NET_FTP_LISTING_H_
#define MOSAICON_NET_FTP_LISTING_H_

#include <cstdint>

struct FtpDirEntry {
  char name[260] = {};         // to the end of the line, with blanks; of a link with " -> target"
  std::int32_t size = 0;       // bytes
  std::int32_t day = 0;        // 1 to 31
  std::int32_t month = 0;      // 1 to 12
  std::int32_t year = 0;       // four digits
  std::int32_t hour = 0;       // 0 to 24, see ParseDosListLine
  std::int32_t minute = 0;     // 0 to 59
  std::int32_t directory = 0;  // 1 for a folder
  FtpDirEntry* next = nullptr;
};

// Both set every member but next. line has no line end; null counts as "".

// A line with a time has no year: it is currentYear. (Servers print a time for the last six months, so
// a line of last December read in January is a year ahead.) A line of more than 8 fields is taken to
// have a group, hence one without a group and with a blank in its name is misread. A month that is no
// English abbreviation counts as 1, a missing year as 1900.
void ParseUnixListLine(const char* line, int currentYear, FtpDirEntry& entry);

// Years are two digits: 70 to 99 mean 1970 to 1999, others 2000 to 2069. Four digits are the year itself;
// of any other number the first two digits count. "P" behind the minutes adds 12 to the hour, also to 12,
// which makes 24.
void ParseDosListLine(const char* line, FtpDirEntry& entry);

#endif  // MOSAICON_NET_FTP_LISTING_H_
