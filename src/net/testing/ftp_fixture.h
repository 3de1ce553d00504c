// A test of the FTP client against a scripted server, whose time is hurried. Test code.
#ifndef MOSAICON_NET_TESTING_FTP_FIXTURE_H_
#define MOSAICON_NET_TESTING_FTP_FIXTURE_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "net/ftp_client.h"
#include "net/testing/clients.h"
#include "net/testing/hurried_time.h"
#include "net/testing/scripted_server.h"
#include "net/timeout_clock.h"

class FtpClient : public Watched<CUT_FTPClient> {
 public:
  int WaitForReceive(long seconds, long microseconds) override {
    waits.push_back(seconds);
    return Watched::WaitForReceive(seconds, microseconds);
  }

  std::vector<long> waits;  // for replies, in seconds
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
    m_time.server = nullptr;
    m_server = std::make_unique<ScriptedServer>(script);
    m_time.server = m_server.get();
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

  HurriedTime m_time;
  std::unique_ptr<ScriptedServer> m_server;
  FtpClient m_client;
};

// Milliseconds since it was made, as the client sees them.
class Stopwatch {
 public:
  std::uint64_t Elapsed() const { return TimeoutClock() - m_start; }

 private:
  std::uint64_t m_start = TimeoutClock();
};

#endif  // MOSAICON_NET_TESTING_FTP_FIXTURE_H_
