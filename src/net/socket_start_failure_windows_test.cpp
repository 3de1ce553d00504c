// Where Windows Sockets do not start. This program brings a StartSockets of its own, which fails; so does
// every socket, for nobody else starts them here.
#include <gtest/gtest.h>

#include "net/error_codes.h"
#include "net/ftp_client.h"
#include "net/socket_system.h"

namespace {

int stops = 0;

TEST(WithoutWinsock, AClientIsMadeAndStopsNothing) {
  {
    CUT_WSClient client;
    EXPECT_FALSE(client.IsConnected());
    EXPECT_EQ(client.GetReceiveTimeout(), 30000);
  }
  EXPECT_EQ(stops, 0);
}

TEST(WithoutWinsock, OperationsFail) {
  CUT_WSClient client;
  EXPECT_NE(client.Connect(9, "127.0.0.1", 1), kNetSuccess);
  EXPECT_NE(client.Listen(0), kNetSuccess);
  EXPECT_EQ(client.Send("x"), 0);
  EXPECT_EQ(client.WaitForReceive(1, 0), 1);
  EXPECT_EQ(client.CloseConnection(), kNetSuccess);
}

TEST(WithoutWinsock, AnFtpClientFailsToo) {
  CUT_FTPClient client;
  EXPECT_NE(client.FTPConnect("127.0.0.1", "ann", "secret"), kNetSuccess);
  EXPECT_FALSE(client.IsLoggedIn());
}

}  // namespace

int StartSockets() {
  return 0;
}

void StopSockets() {
  ++stops;
}
