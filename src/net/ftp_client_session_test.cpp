#include "net/testing/ftp_fixture.h"

namespace {

using FtpSession = FtpTest;

TEST_F(FtpSession, LogsInWithUserAndPassword) {
  Serve(Greeting() + Settings() + InStep());
  EXPECT_EQ(Connect(), kNetSuccess);
  EXPECT_TRUE(m_client.IsLoggedIn());
  EXPECT_EQ(m_client.GetTransferType(), 0);
  ExpectInStep();
  EXPECT_FALSE(m_client.IsLoggedIn());
}

TEST_F(FtpSession, LogsInWithoutPasswordWhenTheServerWantsNone) {
  Serve(Script{Say("220 ready"), Expect("USER ann"), Say("230 in")} + Settings() + InStep());
  EXPECT_EQ(Connect(), kNetSuccess);
  ExpectInStep();
}

TEST_F(FtpSession, SendsTheAccountWhenTheServerAsks) {
  Serve(Script{Say("220 ready"), Expect("USER ann"), Say("331"), Expect("PASS "), Say("332 account?"),
               Expect("ACCT surveys"), Say("230 in")} +
        Settings() + InStep());
  EXPECT_EQ(m_client.FTPConnect("127.0.0.1", "ann", nullptr, "surveys"), kNetSuccess);
  ExpectInStep();
}

TEST_F(FtpSession, ReadsAGreetingOfSeveralLines) {
  Serve(Script{Say("220-Welcome"), Say("220-more"), Say("220 ready"), Expect("Quit")});
  EXPECT_EQ(m_client.Connect(m_server->Port(), "127.0.0.1", 5), kNetSuccess);
  ASSERT_EQ(m_client.GetReplyLineCount(), 3);
  EXPECT_STREQ(m_client.GetReplyLineText(0), "220-Welcome");
  EXPECT_STREQ(m_client.GetReplyLineText(1), "220-more");
  EXPECT_STREQ(m_client.GetReplyLineText(2), "220 ready");
  EXPECT_EQ(m_client.GetReplyLineText(3), nullptr);
  EXPECT_EQ(m_client.GetReplyLineText(-1), nullptr);
  EXPECT_STREQ(m_client.GetLastReplyText(), "220 ready");
  ExpectPlayed();
}

struct LoginCase {
  const char* greeting;
  const char* user;
  const char* pass;
  const char* acct;
  int code;
};

// A null text ends the script before it.
TEST_F(FtpSession, IsRefusedWithTheCodeOfTheStep) {
  const LoginCase cases[] = {
      {"199 wait", nullptr, nullptr, nullptr, kNetConnectionFailed},
      {"400 full", nullptr, nullptr, nullptr, kNetConnectionFailed},
      {"500 OOPS: bad config", nullptr, nullptr, nullptr, kNetConnectionFailed},
      {"hello", nullptr, nullptr, nullptr, kNetNoResponse},
      {"220", "199 x", nullptr, nullptr, kNetUserRefused},
      {"220", "400 x", nullptr, nullptr, kNetUserRefused},
      {"220", "530 x", nullptr, nullptr, kNetUserRefused},
      {"300", "331 x", "199 x", nullptr, kNetPassRefused},
      {"220", "331 x", "400 x", nullptr, kNetPassRefused},
      {"399", "331 x", "530 x", nullptr, kNetPassRefused},
      {"220", "331 x", "332 x", "199 x", kNetAcctRefused},
      {"220", "331 x", "332 x", "400 x", kNetAcctRefused},
      {"220", "331 x", "332 x", "530 x", kNetAcctRefused},
  };
  for (const LoginCase& login : cases) {
    Script script = {Say(login.greeting)};
    const char* const replies[] = {login.user, login.pass, login.acct};
    const char* const commands[] = {"USER ann", "PASS secret", "ACCT surveys"};
    for (int i = 0; i < 3 && replies[i] != nullptr; ++i) {
      script = script + Script{Expect(commands[i]), Say(replies[i])};
    }
    if (login.user != nullptr) script.push_back(Expect("Quit"));
    Serve(script + Script{ExpectEnd()});
    EXPECT_EQ(m_client.FTPConnect("127.0.0.1", "ann", "secret", "surveys"), login.code) << login.code;
    EXPECT_EQ(m_client.codes.back(), login.code);
    EXPECT_FALSE(m_client.IsLoggedIn());
    ExpectPlayed();
  }
}

TEST_F(FtpSession, GoesOnAtAnyReplyOfTheSecondAndThirdClass) {
  Serve(Script{Say("200"), Expect("USER ann"), Say("300"), Expect("PASS secret"), Say("300"),
               Expect("ACCT surveys"), Say("200")} +
        Settings() + InStep());
  EXPECT_EQ(m_client.FTPConnect("127.0.0.1", "ann", "secret", "surveys"), kNetSuccess);
  ExpectInStep();
  Serve(Script{Say("399"), Expect("USER ann"), Say("399"), Expect("PASS secret"), Say("299")} + Settings() +
        InStep());
  EXPECT_EQ(m_client.FTPConnect("127.0.0.1", "ann", "secret", "surveys"), kNetSuccess);
  ExpectInStep();
}

TEST_F(FtpSession, AcceptsAThirdClassReplyToTheAccount) {
  Serve(Script{Say("220"), Expect("USER ann"), Say("331"), Expect("PASS secret"), Say("332"),
               Expect("ACCT x"), Say("399 fine")} +
        Settings() + InStep());
  EXPECT_EQ(m_client.FTPConnect("127.0.0.1", "ann", "secret", "x"), kNetSuccess);
  ExpectInStep();
}

TEST_F(FtpSession, ForgivesRefusedSettings) {
  Serve(Greeting() +
        Script{Expect("TYPE A"), Say("500 no"), Expect("MODE S"), Say("502 no"), Expect("STRU F"),
               Say("504 no")} +
        InStep());
  EXPECT_EQ(Connect(), kNetSuccess);
  EXPECT_EQ(m_client.GetTransferType(), 1) << "as it was";
  EXPECT_EQ(std::count(m_client.codes.begin(), m_client.codes.end(), kNetDenied), 3) << "the hook saw them";
  ExpectInStep();
}

TEST_F(FtpSession, EndsWhenTheServerGoesAtAnyStep) {
  const Script all = Greeting();
  for (size_t steps = 0; steps < all.size(); ++steps) {
    Serve(Script(all.begin(), all.begin() + static_cast<long>(steps)) + Script{Close()});
    EXPECT_EQ(Connect(), kNetNoResponse) << steps;
    EXPECT_EQ(m_time.vainWaits.size(), 0U) << "there was nothing to wait for";
    ExpectPlayed();
  }
  Serve(all + Script{Close()});
  EXPECT_EQ(Connect(), kNetSuccess) << "the settings do not matter";
  ExpectPlayed();
}

TEST_F(FtpSession, WaitsForAReplyAsLongAsTheDataTimeOutSays) {
  std::atomic<bool> isOver = false;
  Serve({Await(isOver)});
  m_client.SetDataTimeouts(1000, 30000);
  const Stopwatch watch;
  EXPECT_EQ(Connect(), kNetNoResponse);
  EXPECT_GE(watch.Elapsed(), 900U);
  EXPECT_EQ(m_client.waits, std::vector<long>{1});
  isOver = true;
  EXPECT_EQ(m_server->Finish(), "");
}

TEST_F(FtpSession, WaitsThirtySecondsUnlessToldOtherwise) {
  std::atomic<bool> isOver = false;
  m_server = std::make_unique<ScriptedServer>(Script{Await(isOver)});
  m_time.server = m_server.get();
  m_client.SetControlPort(m_server->Port());
  EXPECT_EQ(Connect(), kNetNoResponse);
  EXPECT_EQ(m_client.waits, std::vector<long>{30});
  EXPECT_EQ(m_time.vainWaits, std::vector<long long>{30000});
  isOver = true;
  EXPECT_EQ(m_server->Finish(), "");
}

// Without a wait of its own the client would wait for as long as the socket does.
TEST_F(FtpSession, WaitsASecondAtLeast) {
  LogInTo(Script{Expect("CDUP")} + InStep());
  m_client.SetDataTimeouts(1, 0);
  const Stopwatch watch;
  m_client.waits.clear();
  EXPECT_EQ(m_client.CdUp(), kNetNoResponse);
  EXPECT_EQ(m_client.waits, std::vector<long>{1});
  EXPECT_GE(watch.Elapsed(), 900U);
  m_client.SetDataTimeouts(5000, 5000);
  ExpectInStep();
}

TEST_F(FtpSession, IsAbortedAfterTheGreeting) {
  Serve({Say("220 ready"), ExpectEnd()});
  m_client.aborted = true;
  EXPECT_EQ(Connect(), kNetAborted);
  ExpectPlayed();
}

TEST_F(FtpSession, ReportsWhereItCouldNotConnect) {
  m_client.SetConnectTimeout(1);
  const RefusingPort nobody;
  m_client.SetControlPort(nobody.Port());
  EXPECT_EQ(Connect(), kNetConnectTimedOut);
  EXPECT_EQ(m_client.FTPConnect("no-such-name.invalid", "ann", "secret"), kNetBadAddress);
  EXPECT_EQ(m_client.FTPConnect(nullptr, "ann", "secret"), kNetBadAddress);
}

TEST_F(FtpSession, ConnectsAsFtpDoesUnlessToldOtherwise) {
  class Client : public CUT_FTPClient {
   public:
    int Connect(std::uint16_t port, const char* address, long timeout, int family, int type) override {
      asked = {port, timeout, family, type};
      host = address;
      return kNetNotConnected;
    }
    std::vector<long> asked;
    std::string host;
  };
  Client client;
  EXPECT_EQ(client.FTPConnect("ftp.example", "ann", "secret"), kNetNotConnected);
  EXPECT_EQ(client.asked, (std::vector<long>{21, 5, kInternetFamily, kStreamSocket}));
  EXPECT_EQ(client.host, "ftp.example");
  EXPECT_EQ(client.GetTransferType(), 1);
  EXPECT_EQ(client.GetTransferMode(), 0);
  EXPECT_EQ(client.GetStructure(), 0);
}

TEST_F(FtpSession, ForgetsWhatTheLastServerSaid) {
  LogInTo(InStep());
  EXPECT_GT(m_client.GetReplyLineCount(), 0);
  ExpectInStep();
  EXPECT_STREQ(m_client.GetLastReplyText(), "200 in step") << "closing forgets nothing";
  EXPECT_EQ(m_client.FTPConnect(nullptr, "ann", "secret"), kNetBadAddress);
  EXPECT_EQ(m_client.GetReplyLineCount(), 0);
  EXPECT_STREQ(m_client.GetLastReplyText(), "");
}

TEST_F(FtpSession, RefusesBadTextsBeforeItConnects) {
  const RefusingPort nobody;
  m_client.SetControlPort(nobody.Port());
  const std::string tooLong(260 - 7 + 1, 'x');
  EXPECT_EQ(m_client.FTPConnect("127.0.0.1", "ann\r\nDELE x", "secret"), kNetBadCharacters);
  EXPECT_EQ(m_client.FTPConnect("127.0.0.1", "ann", "secret\n"), kNetBadCharacters);
  EXPECT_EQ(m_client.FTPConnect("127.0.0.1", "ann", "secret", "\r"), kNetBadCharacters);
  EXPECT_EQ(m_client.FTPConnect("127.0.0.1", tooLong.c_str(), "secret"), kNetParameterTooLong);
  EXPECT_EQ(m_client.FTPConnect("127.0.0.1", "ann", tooLong.c_str()), kNetParameterTooLong);
  EXPECT_EQ(m_client.FTPConnect("127.0.0.1", "ann", "secret", tooLong.c_str()), kNetParameterTooLong);
}

TEST_F(FtpSession, EndsTheOldConnectionWhateverTheNewOneIsTold) {
  LogInTo({Expect("Quit"), ExpectEnd()});
  EXPECT_EQ(m_client.FTPConnect("127.0.0.1", "ann", "secret\n"), kNetBadCharacters);
  EXPECT_FALSE(m_client.IsLoggedIn());
  EXPECT_EQ(m_client.GetReplyLineCount(), 0);
  EXPECT_STREQ(m_client.GetLastReplyText(), "");
  EXPECT_EQ(m_server->Finish(), "");
}

TEST_F(FtpSession, ConnectsAnewOverAnOldConnection) {
  LogInTo(Script{Expect("Quit"), ExpectEnd()});
  const auto first = std::move(m_server);
  Serve(Greeting() + Settings() + InStep());
  EXPECT_EQ(Connect(), kNetSuccess);
  EXPECT_EQ(first->Finish(), "");
  ExpectInStep();
}

TEST_F(FtpSession, ClosesWithoutWaitingForTheAnswer) {
  std::atomic<bool> isClosed = false;
  LogInTo(Script{Expect("Quit"), Await(isClosed), ExpectEnd()});
  EXPECT_EQ(m_client.FTPClose(), kNetSuccess);
  EXPECT_EQ(m_time.vainWaits.size(), 0U);
  isClosed = true;
  EXPECT_EQ(m_client.FTPClose(), kNetSuccess);
  EXPECT_EQ(m_server->Finish(), "");
}

TEST_F(FtpSession, IsClosedByTheDestructor) {
  m_server = std::make_unique<ScriptedServer>(Greeting() + Settings() + Script{Expect("Quit"), ExpectEnd()});
  {
    CUT_FTPClient client;
    client.SetControlPort(m_server->Port());
    ASSERT_EQ(client.FTPConnect("127.0.0.1", "ann", "secret"), kNetSuccess);
  }
  EXPECT_EQ(m_server->Finish(), "");
}

TEST_F(FtpSession, AnswersNothingWhenClosed) {
  FakeSource source("x");
  EXPECT_EQ(m_client.NoOp(), kNetNoResponse);
  EXPECT_EQ(m_client.List(), kNetNoResponse);
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetNoResponse);
  m_client.SetPassive(true);
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetNoResponse);
  EXPECT_EQ(m_client.SetTransferMode(3), kNetNoResponse);
  EXPECT_TRUE(source.modes.empty());
}

TEST_F(FtpSession, ChecksItsPorts) {
  for (int port : {0, -1, 65536}) EXPECT_EQ(m_client.SetControlPort(port), kNetBadValue);
  for (int port : {0, -1, 32001}) EXPECT_EQ(m_client.SetNextDataPort(port), kNetBadValue);
  for (int port : {1, 65535}) EXPECT_EQ(m_client.SetControlPort(port), kNetSuccess);
  for (int port : {1, 32000}) EXPECT_EQ(m_client.SetNextDataPort(port), kNetSuccess);
}

}  // namespace
