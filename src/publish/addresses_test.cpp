#include "publish/addresses.h"

#include <gtest/gtest.h>

namespace {

TEST(HostAddress, IsAHostWithOrWithoutAPort) {
  const struct {
    const char* text;
    const char* host;
    int port;
  } cases[] = {
      {"ftp.example.com", "ftp.example.com", 21},
      {"127.0.0.1:2121", "127.0.0.1", 2121},
      {"  host:1 ", "host", 1},
      {"host:65535", "host", 65535},
      {"ftp://host/", "host", 21},
      {"ftp://host:990", "host", 990},
      {"FTP://Host", "Host", 21},
      {"Ftp://host/", "host", 21},
      {"ftp://", "", 21},
      {"", "", 21},
      {"  ", "", 21},
      // These stay as they are, and are not found.
      {"host:", "host:", 21},
      {"host:0", "host:0", 21},
      {"host:000021", "host:000021", 21},
      {"host:65536", "host:65536", 21},
      {"host:99999999999", "host:99999999999", 21},
      {"host:ftp", "host:ftp", 21},
      {"host:-1", "host:-1", 21},
      {"host/www", "host/www", 21},
  };
  for (const auto& [text, host, port] : cases) {
    const HostAddress address = ParseHostAddress(text);
    EXPECT_EQ(address.host, host) << text;
    EXPECT_EQ(address.port, port) << text;
  }
}

TEST(WebAddress, LosesItsScheme) {
  EXPECT_EQ(WithoutScheme("http://www.example.com/maps"), "www.example.com/maps");
  EXPECT_EQ(WithoutScheme("www.example.com/maps"), "www.example.com/maps");
  EXPECT_EQ(WithoutScheme("https://www.example.com"), "https://www.example.com");
  EXPECT_EQ(WithoutScheme("http://"), "");
  EXPECT_EQ(WithoutScheme(""), "");
}

TEST(WebAddress, LosesSevenCharactersWhereverTheSchemeStands) {
  EXPECT_EQ(WithoutScheme("abcdefghttp://x"), "http://x");
  EXPECT_EQ(WithoutScheme("go?http://x"), "://x");
}

}  // namespace
