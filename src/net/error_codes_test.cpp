#include "net/error_codes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "net/testing/data_file.h"

namespace {

std::string Text(int code) {
  return CUT_ERR::GetErrorString(code);
}

// 32-bit FNV-1a over "code text\n" of the codes first to last.
std::uint32_t Checksum(int first, int last) {
  std::uint32_t hash = 2166136261U;
  for (int code = first; code <= last; ++code) {
    for (const char c : std::to_string(code) + " " + Text(code) + "\n") {
      hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    }
  }
  return hash;
}

TEST(ErrorCodes, HaveTheTextsOfTheFamily) {
  const std::vector<std::string> lines = TestDataLines("error_texts.txt");
  ASSERT_EQ(lines.size(), 152U);
  for (int code = 0; code < 152; ++code) {
    EXPECT_EQ(std::to_string(code) + " " + Text(code), lines[static_cast<size_t>(code)]);
  }
}

// The data file might be changed together with the table.
TEST(ErrorCodes, KeepTheChecksumsOfTheirTexts) {
  EXPECT_EQ(Checksum(0, 25), 0x73E14EEBU);
  EXPECT_EQ(Checksum(26, 50), 0x637322A0U);
  EXPECT_EQ(Checksum(51, 75), 0x783D3F15U);
  EXPECT_EQ(Checksum(76, 100), 0x968424C2U);
  EXPECT_EQ(Checksum(101, 125), 0x20758D69U);
  EXPECT_EQ(Checksum(126, 151), 0x9530D6A1U);
}

TEST(ErrorCodes, AreNamedAfterWhatTheySay) {
  EXPECT_EQ(Text(kNetSuccess), "Operation completed successfully.");
  EXPECT_EQ(Text(kNetFailed), "Operation failed.");
  EXPECT_EQ(Text(kNetConnectionFailed), "The connection failed.");
  EXPECT_EQ(Text(kNetTerminated), "The connection was terminated.");
  EXPECT_EQ(Text(kNetConnectTimedOut), "The connection timed-out.");
  EXPECT_EQ(Text(kNetLookupFailed), "Name lookup failed.");
  EXPECT_EQ(Text(kNetDataPortNotOpened), "Data port could not be opened.");
  EXPECT_EQ(Text(kNetDenied), "The request was denied by the server.");
  EXPECT_EQ(Text(kNetDataConnectionFailed), "The Server failed to connect on the data port.");
  EXPECT_EQ(Text(kNetSocketNotOpen), "The socket is not opened.");
  EXPECT_EQ(Text(kNetSocketAlreadyOpen), "The socket is already opened or in use.");
  EXPECT_EQ(Text(kNetSocketNotCreated), "The socket creation failed.");
  EXPECT_EQ(Text(kNetNotBound), "The socket binding to local port failed.");
  EXPECT_EQ(Text(kNetNotConnected), "The socket connection failed.");
  EXPECT_EQ(Text(kNetTimedOut), "A timeout occurred.");
  EXPECT_EQ(Text(kNetReceiveFailed), "A receive socket error occurred.");
  EXPECT_EQ(Text(kNetSendFailed), "Winsock send command failed.");
  EXPECT_EQ(Text(kNetListenFailed), "The listen process failed.");
  EXPECT_EQ(Text(kNetBadMode), "An error occurred as a result of an invalid file type.");
  EXPECT_EQ(Text(kNetBufferTooShort), "An error resulted due to the buffer being too short.");
  EXPECT_EQ(Text(kNetNullBuffer), "An error resulted due to a NULL buffer");
  EXPECT_EQ(Text(kNetNoResponse), "There was no response.");
  EXPECT_EQ(Text(kNetBadIndex), "The index value was out of range.");
  EXPECT_EQ(Text(kNetRetrFailed), "The RETR command failed.");
  EXPECT_EQ(Text(kNetPortFailed), "The PORT command failed.");
  EXPECT_EQ(Text(kNetListFailed), "The LIST command failed.");
  EXPECT_EQ(Text(kNetStorFailed), "The STOR command failed.");
  EXPECT_EQ(Text(kNetUserRefused), "The USER command was not accepted.");
  EXPECT_EQ(Text(kNetPassRefused), "The PASS command was not accepted.");
  EXPECT_EQ(Text(kNetAcctRefused), "The ACCT command was not accepted.");
  EXPECT_EQ(Text(kNetRnfrRefused), "The RNFR command not accepted.");
  EXPECT_EQ(Text(kNetRntoRefused), "The RNTO command not accepted.");
  EXPECT_EQ(Text(kNetSourceNotOpened), "Failed to open data source.");
  EXPECT_EQ(Text(kNetSourceNotWritten), "Failed to write to the data source.");
  EXPECT_EQ(Text(kNetAborted), "Aborted by user.");
  EXPECT_EQ(Text(kNetBadAddress), "The address is not valid.");
  EXPECT_EQ(Text(kNetParameterTooLong), "Parameter too long.");
  EXPECT_EQ(Text(kNetBadValue), "Invalid value of the parameter.");
  EXPECT_EQ(Text(kNetQuoteEmpty), "The Quote Command was empty");
  EXPECT_EQ(Text(kNetRestRefused), "The REST command is not supported by the server");
  EXPECT_EQ(Text(kNetBadCharacters), "String parameter contains invalid characters.");
}

TEST(ErrorCodes, OnlyTwoShareAText) {
  for (int code = 0; code < 152; ++code) {
    for (int other = code + 1; other < 152; ++other) {
      EXPECT_EQ(Text(code) == Text(other), code == 61 && other == 73) << code << " " << other;
    }
  }
}

TEST(ErrorCodes, OutsideTheTableHaveATextToo) {
  const std::string outOfBounds = "CUT_ERR::GetErrorString: Array out of bounds!";
  for (const int code :
       {152, -1, 1000000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    EXPECT_EQ(Text(code), outOfBounds) << code;
  }
}

}  // namespace
