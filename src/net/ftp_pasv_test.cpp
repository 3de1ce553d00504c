#include "net/ftp_pasv.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// "address:port", "no address:port" or "no bracket".
std::string Told(const char* text) {
  const PasvResult result = ParsePasvReply(text);
  if (!result.hasBracket) return "no bracket";
  return (result.address.empty() ? "no address" : result.address) + ":" + std::to_string(result.port);
}

TEST(PasvReply, IsReadAsServersWriteIt) {
  EXPECT_EQ(Told("Entering Passive Mode (127,0,0,1,4,210)"), "127.0.0.1:1234");
  EXPECT_EQ(Told("Entering Passive Mode (127,0,0,1,4,210)."), "127.0.0.1:1234");
  EXPECT_EQ(Told("Entering passive mode (192,168,10,20,255,255)."), "192.168.10.20:65535");
  EXPECT_EQ(Told("Passif (10,0,0,1,0,21)\r\n"), "10.0.0.1:21");
  EXPECT_EQ(Told("(255,255,255,255,0,1)"), "255.255.255.255:1");
  EXPECT_EQ(Told("(0,0,0,0,1,0)"), "0.0.0.0:256");
}

TEST(PasvReply, ToleratesWhatIsHarmless) {
  EXPECT_EQ(Told("(127,0,0,1,4,210"), "127.0.0.1:1234");
  EXPECT_EQ(Told("( 127, 0, 0, 1, 4 ,210 )"), "127.0.0.1:1234");
  EXPECT_EQ(Told("(127,000,000,001,004,210)"), "127.0.0.1:1234");
  EXPECT_EQ(Told("(127,010,000,001,004,210)"), "127.10.0.1:1234");
  EXPECT_EQ(Told("((127,0,0,1,4,210))"), "127.0.0.1:1234");
  EXPECT_EQ(Told("()127,0,0,1,4,210"), "127.0.0.1:1234");
  EXPECT_EQ(Told("(127,,0,0,1,,4,210)"), "127.0.0.1:1234");
  EXPECT_EQ(Told("(127,0,0,1,4,210,99)"), "127.0.0.1:1234");
  EXPECT_EQ(Told("(127,0,0,1,4,210) (10,0,0,1,1,1)"), "127.0.0.1:1234");
}

TEST(PasvReply, WithoutABracketSaysSo) {
  EXPECT_EQ(Told("Entering Passive Mode 127,0,0,1,4,210"), "no bracket");
  EXPECT_EQ(Told("127,0,0,1,4,210)"), "no bracket");
  EXPECT_EQ(Told(""), "no bracket");
  EXPECT_EQ(Told(nullptr), "no bracket");
}

TEST(PasvReply, HasNoAddressWhenOneNumberIsBad) {
  EXPECT_EQ(Told("(256,0,0,1,4,210)"), "no address:1234");
  EXPECT_EQ(Told("(127,0,0,99999999999999999999,4,210)"), "no address:1234");
  EXPECT_EQ(Told("(127,0,-1,1,4,210)"), "no address:1234");
  EXPECT_EQ(Told("(127,x,0,1,4,210)"), "no address:1234");
  EXPECT_EQ(Told("(0x7f,0,0,1,4,210)"), "no address:1234");
  EXPECT_EQ(Told("(1 2,0,0,1,4,210)"), "no address:1234");
  EXPECT_EQ(Told("(127, ,0,1,4,210)"), "no address:1234");
  EXPECT_EQ(Told("(a,b,c,d,e,f)"), "no address:0");
  EXPECT_EQ(Told("("), "no address:0");
  EXPECT_EQ(Told("()"), "no address:0");
  EXPECT_EQ(Told("(127,0,0)"), "no address:0");
}

TEST(PasvReply, TellsPortsOutOfRange) {
  EXPECT_EQ(Told("(127,0,0,1,0,0)"), "127.0.0.1:0");
  EXPECT_EQ(Told("(127,0,0,1,273,112)"), "127.0.0.1:70000");
  EXPECT_EQ(Told("(127,0,0,1,0,70000)"), "127.0.0.1:65535");
  EXPECT_EQ(Told("(127,0,0,1,99999999999,99999999999)"), "127.0.0.1:16842495");
}

TEST(PasvReply, HasNoPortWhenOneNumberIsMissing) {
  EXPECT_EQ(Told("(127,0,0,1)"), "127.0.0.1:0");
  EXPECT_EQ(Told("(127,0,0,1,4)"), "127.0.0.1:0");
  EXPECT_EQ(Told("(127,0,0,1,-1,300)"), "127.0.0.1:0");
  EXPECT_EQ(Told("(127,0,0,1,4,x)"), "127.0.0.1:0");
}

TEST(ServerAddress, IsNoneOfThoseThatNoServerHas) {
  for (const char* address : {"1.0.0.0", "10.0.0.1", "127.0.0.1", "192.168.1.1", "223.255.255.255"}) {
    EXPECT_TRUE(IsServerAddress(address)) << address;
  }
  for (const char* address : {"", "0.0.0.0", "0.255.255.255", "224.0.0.1", "240.0.0.1", "255.255.255.255"}) {
    EXPECT_FALSE(IsServerAddress(address)) << address;
  }
}

TEST(PasvReply, MayBeLong) {
  EXPECT_EQ(Told((std::string(10000, ' ') + "(127,0,0,1,4,210)").c_str()), "127.0.0.1:1234");
  EXPECT_EQ(Told(std::string(10000, '(').c_str()), "no address:0");
  EXPECT_EQ(Told(("(127,0,0," + std::string(10000, '0') + "1,4,210)").c_str()), "127.0.0.1:1234");
}

}  // namespace
