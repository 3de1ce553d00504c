#include <gtest/gtest.h>
#include <winsock2.h>

#include "net/socket_system.h"

namespace {

TEST(SystemErrors, OfWindowsHaveTheirMeaning) {
  using enum SocketError;
  const struct {
    int number;
    SocketError meaning;
  } errors[] = {
      {10004, kInterrupted},
      {10014, kBadPointer},
      {10022, kBadArgument},
      {10035, kWouldBlock},
      {10036, kInProgress},
      {10038, kNotASocket},
      {10040, kMessageTooLong},
      {10045, kNotSupported},
      {10050, kNetworkDown},
      {10052, kNetworkReset},
      {10053, kConnectionAborted},
      {10054, kConnectionReset},
      {10056, kAlreadyConnected},
      {10057, kNotConnected},
      {10058, kShutDown},
      {10060, kTimedOut},
      {10061, kRefused},
      {10093, kNotStarted},
      {10013, kOther},
  };
  for (const auto& [number, meaning] : errors) {
    EXPECT_EQ(MeaningOfSystemError(number), meaning) << number;
    SetLastSocketError(meaning);
    EXPECT_EQ(WSAGetLastError(), number);
    EXPECT_EQ(LastSocketError(), meaning);
  }
}

}  // namespace
