#include "net/testing/ftp_fixture.h"

namespace {

using FtpReplies = FtpTest;

#ifdef _WIN32
constexpr bool kIsUnderWine = true;
#else
constexpr bool kIsUnderWine = false;
#endif

TEST_F(FtpReplies, DoNotTakeALateReplyForTheirOwn) {
  std::atomic<bool> isLate = false;
  LogInTo(Script{Expect("CDUP"), Await(isLate), Say("250 late"), Expect("NOOP"), Say("200 own")} + InStep());
  m_client.SetDataTimeouts(1000, 1000);
  EXPECT_EQ(m_client.CdUp(), kNetNoResponse);
  m_client.SetDataTimeouts(5000, 1000);
  isLate = true;
  EXPECT_EQ(m_client.WaitForReceive(20, 0), 0);
  EXPECT_EQ(m_client.NoOp(), kNetSuccess);
  EXPECT_STREQ(m_client.GetLastReplyText(), "200 own");
  ExpectInStep();
}

TEST_F(FtpReplies, TakeHalfALineForWhatItSays) {
  std::atomic<bool> isFirstTaken = false;
  std::atomic<bool> isSecondTaken = false;
  LogInTo(Script{Expect("CDUP"), SayRaw("250 ha"), Await(isFirstTaken), SayRaw("lf\r\n"), Expect("CDUP"),
                 SayRaw("25"), Await(isSecondTaken), SayRaw("0\r\n"), Expect("CDUP"),
                 SayRaw("550 no line end"), Close()});
  m_client.SetDataTimeouts(1000, 1000);
  EXPECT_EQ(m_client.CdUp(), kNetSuccess);
  EXPECT_STREQ(m_client.GetLastReplyText(), "250 ha");
  isFirstTaken = true;
  EXPECT_EQ(m_client.WaitForReceive(20, 0), 0);
  EXPECT_EQ(m_client.CdUp(), kNetDenied) << "a code of 25";
  isSecondTaken = true;
  EXPECT_EQ(m_client.WaitForReceive(20, 0), 0);
  EXPECT_EQ(m_client.CdUp(), kNetDenied) << "and what followed was forgotten";
  EXPECT_STREQ(m_client.GetLastReplyText(), "550 no line end");
  ExpectPlayed();
}

TEST_F(FtpReplies, ReadTheirReplyDespiteAnAbort) {
  LogInTo(Script{Expect("CDUP"), Wait(200), SayRaw("25"), Wait(200), SayRaw("0 done\r\n")} + InStep());
  m_client.aborted = true;
  EXPECT_EQ(m_client.CdUp(), kNetSuccess);
  m_client.aborted = false;
  ExpectInStep();
}

TEST_F(FtpReplies, AreReadToTheirEndWhereverTheAbortFallsIn) {
  constexpr int kMostQuestions = 5;
  Script script;
  for (int i = 0; i < kMostQuestions; ++i) {
    script = script + Script{Expect("CDUP"), SayRaw("250 do"), Wait(100), Say("ne")};
  }
  LogInTo(script + InStep());
  for (int i = 0; i < kMostQuestions; ++i) {
    m_client.abortAfterQuestions = m_client.abortQuestions + i;
    EXPECT_EQ(m_client.CdUp(), kNetSuccess);
    EXPECT_STREQ(m_client.GetLastReplyText(), "250 done") << i;
  }
  EXPECT_EQ(m_time.vainWaits.size(), 0U) << "behind the end there is nothing to wait for";
  m_client.abortAfterQuestions = std::numeric_limits<int>::max();
  ExpectInStep();
}

TEST_F(FtpReplies, AreWaitedForAsLongAsALineOnceAborted) {
  LogInTo(Script{Expect("CDUP")} + InStep());
  m_client.SetDataTimeouts(7000, 1000);
  m_client.waits.clear();
  m_client.aborted = true;
  EXPECT_EQ(m_client.CdUp(), kNetNoResponse);
  EXPECT_EQ(m_client.waits, std::vector<long>{7});
  EXPECT_STREQ(m_client.GetLastReplyText(), "200 F") << "that of the command before";
  m_client.aborted = false;
  ExpectInStep();
}

TEST_F(FtpReplies, LeaveNoTimeLimitToOtherLines) {
  std::atomic<bool> isLate = false;
  LogInTo(Script{Expect("CDUP"), Say("250"), Await(isLate), Say("a line")} + InStep());
  EXPECT_EQ(m_client.CdUp(), kNetSuccess);
  m_time.RunAt(100);
  SleepFor(300);  // which are 30 s; a reply may take 20
  m_time.RunAt(1);
  isLate = true;
  char line[20];
  EXPECT_EQ(m_client.ReceiveLine(line, sizeof line, 5), 8);
  ExpectInStep();
}

TEST_F(FtpReplies, MayBeThereBeforeTheirCommand) {
  LogInTo(Script{Expect("CDUP"), SayRaw("250 one\r\n250 two\r\n"), Expect("CDUP")} + InStep());
  for (const char* reply : {"250 one", "250 two"}) {
    EXPECT_EQ(m_client.CdUp(), kNetSuccess);
    EXPECT_STREQ(m_client.GetLastReplyText(), reply);
  }
  ExpectInStep();
}

TEST_F(FtpReplies, DoNotWaitForEverOnceAborted) {
  LogInTo(Script{Expect("CDUP"), SayForEver("2")});
  m_client.SetDataTimeouts(1000, 1000);
  m_client.aborted = true;
  const Stopwatch watch;
  EXPECT_EQ(m_client.CdUp(), kNetSuccess) << "222, as far as it came";
  EXPECT_LT(watch.Elapsed(), 3500U) << "one line's time, not the four of a whole reply";
  ExpectPlayed();
}

TEST_F(FtpReplies, MayAnnounceTheLastOneTwice) {
  const Script own = {Expect("CWD own"), Say("250 own")};
  LogInTo(Script{AnswerPasv(), Expect("STOR x"), AcceptData(), Say("125 go"), HearData(), Say("150 go on"),
                 Say("226 done")} +
          own +
          Script{AnswerPasv(), Expect("RETR x"), AcceptData(), Say("150"), SendData("y"), CloseData(),
                 Say("150 again"), Wait(300), Say("150 and again"), Wait(300), Say("226 done")} +
          own +
          Script{AnswerPasv(), Expect("LIST"), AcceptData(), Say("150"), CloseData(), Say("150 a"),
                 Say("150 b"), Say("226 done")} +
          own + Script{Expect("SITE x"), Say("150 a"), Say("200 done")} + own +
          Script{Expect("CDUP"), Say("150 a"), Say("250 done")} + own + InStep());
  m_client.SetPassive(true);
  FakeSource source("x");
  const auto expectOwn = [this] {
    EXPECT_EQ(m_client.ChDir("own"), kNetSuccess);
    EXPECT_STREQ(m_client.GetLastReplyText(), "250 own");
  };
  EXPECT_EQ(m_client.SendFile(source, "x"), kNetTerminated);
  expectOwn();
  EXPECT_EQ(m_client.ReceiveFile(source, "x"), kNetTerminated);
  expectOwn();
  EXPECT_EQ(m_client.List(), kNetListFailed);
  expectOwn();
  EXPECT_EQ(m_client.Quote("SITE x"), kNetSuccess);
  expectOwn();
  EXPECT_EQ(m_client.CdUp(), kNetDenied);
  expectOwn();
  ExpectInStep();
}

TEST_F(FtpReplies, MayBeAnnouncedSixteenTimes) {
  Script script{Expect("CDUP")};
  for (int i = 0; i < 16; ++i) script.push_back(Say("150 soon"));
  LogInTo(script + Script{Wait(300), Say("250 late"), Expect("CWD own"), Say("250 own")} + InStep());
  EXPECT_EQ(m_client.CdUp(), kNetDenied);
  EXPECT_EQ(m_client.ChDir("own"), kNetSuccess);
  EXPECT_STREQ(m_client.GetLastReplyText(), "250 own");
  ExpectInStep();
}

TEST_F(FtpReplies, AreNotWaitedForForEverOnceAnnounced) {
  LogInTo(Script{Expect("CDUP"), Say("150 and no more")} + InStep());
  EXPECT_EQ(m_client.CdUp(), kNetDenied);
  const Stopwatch watch;
  ExpectInStep();
  EXPECT_EQ(m_time.vainWaits, std::vector<long long>{5000});
  EXPECT_GE(watch.Elapsed(), 4900U);
}

TEST_F(FtpReplies, SurviveALineOfMegabytes) {
  // Every piece of it takes three calls, for which Wine takes its time.
  constexpr size_t kMegabytes = kIsUnderWine ? 1 : 10;
  const std::string line = "250 " + std::string(kMegabytes << 20, 'x');
  LogInTo(Script{Expect("CDUP"), Say(line), Expect("CDUP"), Say("250-" + std::string(100000, '-')),
                 Say("250 end")} +
          InStep());
  m_client.SetDataTimeouts(30000, 5000);
  EXPECT_EQ(m_client.CdUp(), kNetSuccess);
  EXPECT_EQ(m_client.GetLastReplyText(), line.substr(0, 259));
  EXPECT_EQ(m_client.CdUp(), kNetSuccess);
  EXPECT_STREQ(m_client.GetLastReplyText(), "250 end");
  ExpectInStep();
}

TEST_F(FtpReplies, GiveUpAReplyWithoutEnd) {
  for (const char* endless : {"250-more\r\n", "x"}) {
    m_time.RunAt(1);
    LogInTo({Expect("CDUP"), SayRaw("250-"), SayForEver(std::string(1000, '#') + endless)});
    m_client.SetDataTimeouts(1000, 5000);
    // So fast that no machine reads as many lines meanwhile as end a reply for their number.
    m_time.RunAt(100);
    const Stopwatch watch;
    EXPECT_EQ(m_client.CdUp(), kNetNoResponse);
    EXPECT_GE(watch.Elapsed(), 4000U);
    EXPECT_LT(watch.Elapsed(), 600000U) << "at this speed";
    ExpectPlayed();
  }
}

TEST_F(FtpReplies, GiveUpALineThatComesTooSlowly) {
  const auto trickle = [](ScriptedServer::Stage& stage) {
    for (int i = 0; i < 1500 && stage.control.Say("2"); ++i) SleepFor(10);
    return true;
  };
  m_time.RunAt(10);
  LogInTo({Expect("CDUP"), trickle});
  m_client.SetDataTimeouts(1000, 5000);
  const Stopwatch watch;
  EXPECT_EQ(m_client.CdUp(), kNetNoResponse);
  EXPECT_GE(watch.Elapsed(), 3900U) << "no single wait was too long";
  EXPECT_LT(watch.Elapsed(), 60000U) << "at this speed";
  ExpectPlayed();
}

TEST_F(FtpReplies, UnderstandThreeDigitsOnly) {
  LogInTo(Script{Expect("CDUP"), Say("250"), Expect("CDUP"), SayRaw("550\n"), Expect("CDUP"), Say("25")} +
          InStep());
  EXPECT_EQ(m_client.CdUp(), kNetSuccess);
  EXPECT_EQ(m_client.CdUp(), kNetDenied);
  EXPECT_EQ(m_client.CdUp(), kNetDenied);
  ExpectInStep();
}

TEST_F(FtpReplies, TakeALineWithoutACodeForNoReply) {
  LogInTo(Script{Expect("CDUP"), Say("done"), Expect("CDUP"), Say(""), Expect("CDUP"), Say("    250 done")} +
          InStep());
  for (int i = 0; i < 3; ++i) EXPECT_EQ(m_client.CdUp(), kNetNoResponse);
  ExpectInStep();
}

TEST_F(FtpReplies, HaveTheNumberOfTheirFirstThreeCharacters) {
  LogInTo(Script{Expect("CDUP"), Say(" 250 done"), Expect("CDUP"), Say("-22"), Expect("CDUP"), Say("  2")} +
          InStep());
  for (int i = 0; i < 3; ++i) EXPECT_EQ(m_client.CdUp(), kNetDenied);
  ExpectInStep();
}

TEST_F(FtpReplies, TellALineWithoutACodeAsTheLastOne) {
  LogInTo(Script{Expect("CDUP"), Say("gone mad"), Expect("CDUP")} + InStep());
  EXPECT_EQ(m_client.CdUp(), kNetNoResponse);
  EXPECT_STREQ(m_client.GetLastReplyText(), "gone mad");
  m_client.SetDataTimeouts(1000, 1000);
  EXPECT_EQ(m_client.CdUp(), kNetNoResponse);
  EXPECT_STREQ(m_client.GetLastReplyText(), "gone mad") << "nothing came, nothing changes";
  m_client.SetDataTimeouts(5000, 5000);
  ExpectInStep();
}

TEST_F(FtpReplies, KeepTheLinesOfTheReply) {
  LogInTo(Script{Expect("HELP"), Say("214-Commands"), Say(" USER"), Say("214 end"), Expect("HELP x"),
                 Say("214 one")} +
          InStep());
  char buffer[16];
  EXPECT_EQ(m_client.Help(""), kNetSuccess);
  ASSERT_EQ(m_client.GetReplyLineCount(), 3);
  EXPECT_EQ(m_client.GetReplyLine(1, buffer, 6), kNetSuccess);
  EXPECT_STREQ(buffer, " USER");
  EXPECT_EQ(m_client.GetReplyLine(1, buffer, 5), kNetBufferTooShort);
  EXPECT_EQ(m_client.GetReplyLine(1, buffer, -1), kNetBufferTooShort);
  EXPECT_EQ(m_client.GetReplyLine(1, nullptr, 6), kNetNullBuffer);
  EXPECT_EQ(m_client.GetReplyLine(3, buffer, 6), kNetBadIndex);
  EXPECT_EQ(m_client.codes.back(), kNetBadIndex);
  EXPECT_EQ(m_client.GetLastReply(buffer, sizeof buffer), kNetSuccess);
  EXPECT_STREQ(buffer, "214 end");
  EXPECT_EQ(m_client.GetLastReply(buffer, 7), kNetBufferTooShort);
  EXPECT_EQ(m_client.codes.back(), kNetBufferTooShort);
  EXPECT_EQ(m_client.GetLastReply(nullptr, 7), kNetNullBuffer);
  EXPECT_EQ(m_client.codes.back(), kNetNullBuffer);
  EXPECT_EQ(m_client.Help("x"), kNetSuccess);
  EXPECT_EQ(m_client.GetReplyLineCount(), 1);
  EXPECT_EQ(m_client.NoOp(), kNetSuccess);
  EXPECT_EQ(m_client.GetReplyLineCount(), 2) << "a single line is added";
  ExpectPlayed();
}

TEST_F(FtpReplies, CutTheReplyTextOneCharacterEarly) {
  LogInTo(Script{Say("250 0123456789")} + InStep());
  char text[11] = "##########";
  EXPECT_EQ(m_client.GetResponseCode(m_client, text, 8), 250);
  EXPECT_STREQ(text, "012345");
  EXPECT_EQ(text[8], '#');
  ExpectInStep();
}

}  // namespace
