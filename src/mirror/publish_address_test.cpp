#include "mirror/publish_address.h"

#include <gtest/gtest.h>

namespace mirror {

namespace {

PublishAddress Parsed(const std::string& text) {
  PublishAddress address;
  EXPECT_EQ(ParsePublishAddress(text, address), "") << text;
  return address;
}

std::string Problem(const std::string& text) {
  PublishAddress address;
  return ParsePublishAddress(text, address);
}

TEST(PublishAddress, HasItsParts) {
  const PublishAddress address =
      Parsed("  SFTP://ann%40survey@example.org:2222/~/my%20maps/harbour%C3%A4// ");
  EXPECT_EQ(address.scheme, Scheme::kSftp);
  EXPECT_EQ(address.user, "ann@survey");
  EXPECT_EQ(address.host, "example.org");
  EXPECT_EQ(PortOf(address), 2222);
  EXPECT_EQ(address.path, "~/my maps/harbourä");
  EXPECT_EQ(address.Text(), "sftp://ann%40survey@example.org:2222/~/my%20maps/harbour%C3%A4");
  EXPECT_EQ(Parsed(address.Text()).path, address.path);
}

TEST(PublishAddress, IsFtpWithoutAScheme) {
  const PublishAddress address = Parsed("ftp.example.org");
  EXPECT_EQ(address.scheme, Scheme::kFtp);
  EXPECT_EQ(address.host, "ftp.example.org");
  EXPECT_EQ(address.path, "");
  EXPECT_EQ(PortOf(address), 21);
  EXPECT_EQ(Parsed("example.org:2121/maps").port, 2121);
  EXPECT_EQ(Parsed("ftp.example.org").Text(), Parsed("ftp://ftp.example.org:21/").Text());
}

TEST(PublishAddress, KnowsPortsOfItsSchemes) {
  EXPECT_EQ(PortOf(Parsed("ftps://a/")), 990);
  EXPECT_EQ(PortOf(Parsed("ftpes://a/")), 21);
  EXPECT_EQ(PortOf(Parsed("sftp://a/")), 22);
}

TEST(PublishAddress, TakesNumbersOfHosts) {
  const PublishAddress address = Parsed("ftp://[::1]:2121/a");
  EXPECT_EQ(address.host, "::1");
  EXPECT_EQ(address.port, 2121);
  EXPECT_EQ(address.Text(), "ftp://[::1]:2121/a");
}

TEST(PublishAddress, CanBeAFolder) {
  EXPECT_EQ(Parsed("file:///C:/web/my%20maps/").path, "C:/web/my maps");
  EXPECT_EQ(Parsed("file:///srv/www").path, "/srv/www");
  EXPECT_EQ(Parsed("file://server/share/maps").path, "//server/share/maps");
  EXPECT_EQ(Parsed("file:///").path, "/");
}

TEST(PublishAddress, MayBeThatOfTheRoot) {
  EXPECT_EQ(Parsed("ftp://a//srv/www").path, "/srv/www");
}

TEST(PublishAddress, LeadsBelow) {
  EXPECT_EQ(Parsed("ftp://a/").Below("b c").path, "b c");
  EXPECT_EQ(Parsed("ftp://a/maps").Below("b c").Text(), "ftp://a/maps/b%20c");
  EXPECT_EQ(Parsed("file:///").Below("b").path, "/b");
}

TEST(PublishAddress, SaysWhatIsWrong) {
  EXPECT_EQ(Problem("ftp://ann:secret@a/"), "a password must not stand in the address");
  EXPECT_EQ(Problem("http://a/"),
            "\"http\" is not known: addresses begin with ftp://, ftpes://, ftps://, sftp:// or file://");
  EXPECT_EQ(Problem(""), "the address has no host");
  EXPECT_EQ(Problem("ftp:///maps"), "the address has no host");
  EXPECT_EQ(Problem("ftp://a:0/"), "the port is no number from 1 to 65535");
  EXPECT_EQ(Problem("ftp://a:65536/"), "the port is no number from 1 to 65535");
  EXPECT_EQ(Problem("ftp://a:x/"), "the port is no number from 1 to 65535");
  EXPECT_EQ(Problem("ftp://[::1/"), "the bracket of the host is not closed");
  EXPECT_EQ(Problem("ftp://[::1]a/"), "the address has something behind its host");
  EXPECT_EQ(Problem("ftp://a b/"), "\"a b\" is no host");
  EXPECT_EQ(Problem("ftp://a/%0Ab"), "the folder in the address cannot be read");
  EXPECT_EQ(Problem("ftp://a/%zz"), "the folder in the address cannot be read");
  EXPECT_EQ(Problem("ftp://a/100%"), "the folder in the address cannot be read");
  EXPECT_EQ(Problem("ftp://a/maps/../b"), "the folder in the address must not contain \"..\"");
  EXPECT_EQ(Problem("file://"), "the address has no folder");
}

}  // namespace

}  // namespace mirror
