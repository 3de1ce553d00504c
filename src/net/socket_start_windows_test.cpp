#include <gtest/gtest.h>
#include <winsock2.h>

#include <memory>

#include "net/socket_system.h"
#include "net/ws_client.h"

namespace {

TEST(Clients, StartAndStopWindowsSocketsOnceEach) {
  ASSERT_EQ(StartSockets(), MAKEWORD(1, 1));
  auto first = std::make_unique<CUT_WSClient>();
  {
    CUT_WSClient second;
    first.reset();
  }
  EXPECT_EQ(WSACleanup(), 0) << "the test's own start";
  EXPECT_EQ(WSACleanup(), SOCKET_ERROR) << "there is no other";
}

}  // namespace
