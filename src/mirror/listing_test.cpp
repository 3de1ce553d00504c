#include "mirror/listing.h"

#include <gtest/gtest.h>

#include <string>

namespace mirror {

namespace {

std::string Shown(const RemoteEntry& entry) {
  const char kind = "FDLO"[static_cast<int>(entry.kind)];
  return std::string(1, kind) + " " + (entry.size ? std::to_string(*entry.size) : "?") + " " + entry.name;
}

std::string Only(const std::string& line) {
  const auto entries = ParseListing(line + "\r\n").entries;
  return entries.size() == 1 ? Shown(entries[0]) : "";
}

TEST(Listing, KnowsTheLinesOfServers) {
  const std::pair<const char*, const char*> lines[] = {
      // vsftpd, proftpd, pure-ftpd, OpenSSH
      {"-rw-r--r--    1 0        0            4321 Mar 07 14:05 a.txt", "F 4321 a.txt"},
      {"-rw-r--r--   1 publisher publisher     4321 Mar  7 14:05 a name.txt", "F 4321 a name.txt"},
      {"drwxr-xr-x    2 1000     1000         4096 Jan 01  2024 19", "D 4096 19"},
      {"lrwxrwxrwx    1 1000     1000            4 Jan 01  2024 www -> /var/www", "L 4 www"},
      {"prw-r--r--    1 1000     1000            0 Jan 01  2024 pipe", "O 0 pipe"},
      // Without a group, with rights of a list, of more than 2 GiB.
      {"-rw-rw-rw-   1 owner   5000000000 Nov 16 11:50 large.tif", "F 5000000000 large.tif"},
      {"-rw-r--r--+  1 ann  domain users  12 Nov 16 11:50 b.png", "F 12 b.png"},
      {"-rw-r--r-- 1 ann users 12 2026-03-07 14:05 b.png", "F 12 b.png"},
      {"-rw-r--r-- 1 ann users 12 Mar  7  9:05 b.png", "F 12 b.png"},
      // A user who is called like a month, a name that looks like a time, and one that begins with a blank.
      {"-rw-r--r-- 1 may users 12 Mar  7 14:05 Mar  7 14:05", "F 12 Mar  7 14:05"},
      {"-rw-r--r-- 1 ann users 12 Mar  7 14:05  b", "F 12  b"},
      {"-rw-r--r-- 1 ann users 12 Mar  7 14:05 a -> b", "F 12 a -> b"},
      // IIS
      {"03-07-26  02:05PM                 4321 a name.txt", "F 4321 a name.txt"},
      {"03-07-2026  14:05       <DIR>          aspnet client", "D ? aspnet client"},
      {"03-07-26  02:05PM       <JUNCTION>     www [C:\\inetpub]", "L ? www"},
      // MLSD
      {"type=file;size=4321;modify=20260307140500; a name.txt", "F 4321 a name.txt"},
      {"Type=dir;Modify=20260307140500;UNIX.mode=0755; 19", "D ? 19"},
      {"modify=20260307;perm=;size=4;type=OS.unix=slink:/etc; etc", "L 4 etc"},
      {"type=OS.unix=symlink;size=4; etc", "L 4 etc"},
      {"type=file;size=1; a; b=c; d", "F 1 a; b=c; d"},
      {"size=12; of no type", "O 12 of no type"},
      {"type=file;size=-1; odd", "F ? odd"},
  };
  for (const auto& [line, shown] : lines) EXPECT_EQ(Only(line), shown) << line;
}

TEST(Listing, LeavesOutWhatItDoesNotKnow) {
  for (const char* line :
       {"", "total 12", "-rw-r--r--", "-rw-r--r-- 1 ann users", "-rw-r--r-- 1 ann users 12 Mar 7", "hello",
        "-rw-r--r-- 1 ann users many Mar  7 14:05 b", "x--------- 1 ann users 12 Mar  7 14:05 b",
        "03-07-26  02:05PM  much a", "03-07-26", "type=file;size=1;", "; name", "type; name",
        "226 Directory send OK."}) {
    EXPECT_EQ(Only(line), "") << line;
  }
}

TEST(Listing, BelievesNoName) {
  const std::string start = "-rw-r--r-- 1 ann users 12 Mar  7 14:05 ";
  for (const char* name :
       {"", ".", "..", "../a", "/etc/passwd", "a/b", "a\\b", "a\tb", "a\x1b[2J", "a\x7f"}) {
    EXPECT_EQ(Only(start + name), "") << name;
    EXPECT_EQ(Only(std::string("type=file;size=1; ") + name), "") << name;
  }
  EXPECT_EQ(Only("type=cdir;size=1; ."), "");
  EXPECT_EQ(Only("type=pdir;size=1; .."), "");
  EXPECT_EQ(ParseListing("type=file;size=1; a\ntype=dir; a\n").entries.size(), 1U)
      << "what comes twice is there once";
}

TEST(Listing, SaysWhenItIsNotUnderstood) {
  for (const char* text : {"", "\r\n", "total 12\r\n", "type=cdir; maps\r\n", "type=file;size=1; ../a\r\n",
                           "-rw-r--r-- 1 ann users 12 Mar  7 14:05 .\n"}) {
    EXPECT_TRUE(ParseListing(text).isUnderstood) << text;
    EXPECT_EQ(ParseListing(text).entries.size(), 0U) << text;
  }
  for (const char* text : {"-rw-r--r-- 1 ann users 12 7. Mär 14:05 a\n", "a.png\n", "type=file\n"}) {
    EXPECT_FALSE(ParseListing(text).isUnderstood) << text;
  }
}

TEST(Listing, HasManyLines) {
  const auto entries = ParseListing("total 2\r\ntype=file;size=1; a\n\ntype=file;size=2; b").entries;
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(Shown(entries[0]), "F 1 a");
  EXPECT_EQ(Shown(entries[1]), "F 2 b");
}

}  // namespace

}  // namespace mirror
