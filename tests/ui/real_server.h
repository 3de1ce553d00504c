// The server that runs beside a test, which MOSAICON_FTP_HOST, _PORT, _USER, _PASSWORD and _ROOT tell of.
#ifndef MOSAICON_TESTS_UI_REAL_SERVER_H_
#define MOSAICON_TESTS_UI_REAL_SERVER_H_

#include <string>

#include "ui/publish_fixture.h"

inline std::string FromEnvironment(const char* variable) {
  char value[MAX_PATH] = "";
  EXPECT_NE(GetEnvironmentVariableA(variable, value, sizeof value), 0U) << variable << " is not set";
  return value;
}

inline Login ServerLogin(bool firewallMode = true) {
  return {.host = FromEnvironment("MOSAICON_FTP_HOST") + ":" + FromEnvironment("MOSAICON_FTP_PORT"),
          .user = FromEnvironment("MOSAICON_FTP_USER"),
          .password = FromEnvironment("MOSAICON_FTP_PASSWORD"),
          .firewallMode = firewallMode};
}

// A path in the folder that the login sees as its root.
inline std::string Remote(const std::string& name) {
  return PathFromEnvironment("MOSAICON_FTP_ROOT") + "\\" + name;
}

#endif  // MOSAICON_TESTS_UI_REAL_SERVER_H_
