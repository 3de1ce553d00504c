// A test of the FTP client against a scripted server. Test code.
#ifndef MOSAICON_NET_TESTING_FTP_FIXTURE_H_
#define MOSAICON_NET_TESTING_FTP_FIXTURE_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "net/ftp_client.h"
#include "net/testing/clients.h"
#include "net/testing/scripted_server.h"

class FtpClient : public Watched<CUT_FTPClient> {
 public:
  int WaitForReceive(long seconds, long microseconds) override {
    waits.push_back(seconds);
    if (isImpatient) return Watched::WaitForReceive(0, 200000);
    return Watched::WaitForReceive(seconds, microseconds);
  }

  std::vector<long> waits;   // what the client meant to wait, in seconds
  bool isImpatient = false;  // it waits a fifth of a second instead
};

class FtpTest : public testing::Test {
 protected:
  using Script = ScriptedServer::Script;

  static Script Greeting() {
    return {Say("220 ready"), Expect("USER ann"), Say("331 whose?"), Expect("PASS secret"), Say("230 in")};
  }
  static Script Settings() {
    return {Expect("TYPE A"), Say("200 A"), Expect("MODE S"), Say("200 S"), Expect("STRU F"), Say("200 F")};
  }
  // A command of its own gets a reply of its own, and the client says goodbye.
  static Script InStep() { return {Expect("NOOP"), Say("200 in step"), Expect("Quit"), ExpectEnd()}; }

  void Serve(const Script& script) {
    m_server = std::make_unique<ScriptedServer>(script);
    m_client.SetControlPort(m_server->Port());
    m_client.SetConnectTimeout(1);
    m_client.SetDataTimeouts(5000, 5000);
  }
  int Connect() { return m_client.FTPConnect("127.0.0.1", "ann", "secret"); }

  // Logs in and plays script, at whose end everything must still be in step.
  void LogInTo(const Script& script) {
    Serve(Greeting() + Settings() + script);
    ASSERT_EQ(Connect(), kNetSuccess);
    m_client.codes.clear();
  }
  void ExpectInStep() {
    EXPECT_EQ(m_client.NoOp(), kNetSuccess);
    EXPECT_STREQ(m_client.GetLastReplyText(), "200 in step");
    ExpectPlayed();
  }
  void ExpectPlayed() {
    m_client.FTPClose();
    EXPECT_EQ(m_server->Finish(), "");
  }

  std::unique_ptr<ScriptedServer> m_server;
  FtpClient m_client;
};

// Milliseconds since it was made.
class Stopwatch {
 public:
  ULONGLONG Elapsed() const { return GetTickCount64() - m_start; }

 private:
  ULONGLONG m_start = GetTickCount64();
};

#endif  // MOSAICON_NET_TESTING_FTP_FIXTURE_H_
