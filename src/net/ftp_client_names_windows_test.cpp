// The client's names where windows.h, which makes a macro of one of them, was read before.
#include <gtest/gtest.h>
#include <windows.h>

#include "net/error_codes.h"
#include "net/ftp_client.h"

namespace {

// Called by its full name, the function is looked for by the linker: the one that the library has.
TEST(Names, OfTheClientAreNotThoseOfTheSystem) {
  CUT_FTPClient client;
  EXPECT_EQ(client.CUT_FTPClient::DeleteFile("a\r\n"), kNetBadCharacters);
}

}  // namespace
