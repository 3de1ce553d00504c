#include <functional>

#include "net/testing/ftp_fixture.h"

namespace {

using FtpCommands = FtpTest;

struct CommandCase {
  std::function<int(CUT_FTPClient&)> run;
  const char* sent;
  int codes[5];  // for a reply of the first to the fifth class
};

std::vector<CommandCase> AllCommands() {
  const int no = kNetDenied;
  return {
      {[](auto& ftp) { return ftp.SetTransferType(0); }, "TYPE A", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.SetTransferType(1); }, "TYPE I", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.SetTransferMode(0); }, "MODE S", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.SetTransferMode(1); }, "MODE B", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.SetTransferMode(2); }, "MODE C", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.SetStructure(0); }, "STRU F", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.SetStructure(1); }, "STRU R", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.SetStructure(2); }, "STRU P", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.NoOp(); }, "NOOP", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.DeleteFile("a b"); }, "DELE a b", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.ChDir("/a b"); }, "CWD /a b", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.CdUp(); }, "CDUP", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.MkDir("\xe4"); }, "MKD \xe4", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.RmDir("%s%n"); }, "RMD %s%n", {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.DeleteFile(nullptr); }, "DELE ", {no, 0, no, no, no}},
      {[](auto& ftp) {
         char path[300];
         return ftp.GetCurDir(path, sizeof path);
       },
       "PWD",
       {no, 0, no, no, no}},
      {[](auto& ftp) { return ftp.Help(nullptr); }, "HELP", {0, 0, no, no, no}},
      {[](auto& ftp) { return ftp.Help("STOR"); }, "HELP STOR", {0, 0, no, no, no}},
      {[](auto& ftp) { return ftp.Quote("SITE CHMOD 644 x"); }, "SITE CHMOD 644 x", {0, 0, 0, 0, 0}},
  };
}

// The first and the last code of each class.
constexpr const char* kReplies[][5] = {{"100 one", "200 two", "300 three", "400 four", "500 five"},
                                       {"199 one", "299 two", "399 three", "499 four", "599 five"}};

TEST_F(FtpCommands, AreJudgedByTheClassOfTheReply) {
  for (const CommandCase& command : AllCommands()) {
    Script script;
    for (const auto& replies : kReplies) {
      for (const char* reply : replies) {
        script = script + Script{Expect(command.sent), Reply(reply), Expect("NOOP"), Say("200 own")};
      }
    }
    LogInTo(script + InStep());
    for (const auto& replies : kReplies) {
      for (int i = 0; i < 5; ++i) {
        m_client.codes.clear();
        EXPECT_EQ(command.run(m_client), command.codes[i]) << command.sent << ": " << replies[i];
        EXPECT_STREQ(m_client.GetLastReplyText(), replies[i]);
        EXPECT_EQ(m_client.codes.back(), command.codes[i]);
        EXPECT_EQ(m_client.NoOp(), kNetSuccess);
        EXPECT_STREQ(m_client.GetLastReplyText(), "200 own");
      }
    }
    ExpectInStep();
  }
}

TEST_F(FtpCommands, MayBeAnsweredInSeveralLines) {
  for (const CommandCase& command : AllCommands()) {
    LogInTo(
        Script{Expect(command.sent), Say("250-one"), Say("  250 two"), Say("251 three"), Say("250 four")} +
        InStep());
    EXPECT_EQ(command.run(m_client), kNetSuccess) << command.sent;
    ASSERT_EQ(m_client.GetReplyLineCount(), 4);
    EXPECT_STREQ(m_client.GetReplyLineText(2), "251 three");
    EXPECT_STREQ(m_client.GetLastReplyText(), "250 four");
    ExpectInStep();
  }
}

TEST_F(FtpCommands, EndWhenTheServerGoes) {
  for (const CommandCase& command : AllCommands()) {
    for (const auto& end : {Close(), Reset()}) {
      LogInTo({Expect(command.sent), end});
      EXPECT_EQ(command.run(m_client), kNetNoResponse) << command.sent;
      EXPECT_EQ(m_client.NoOp(), kNetNoResponse);
      EXPECT_EQ(m_time.vainWaits.size(), 0U) << "there was nothing to wait for";
      ExpectPlayed();
    }
  }
}

TEST_F(FtpCommands, EndWhenTheServerSaysNothing) {
  Script script;
  for (const CommandCase& command : AllCommands()) script.push_back(Expect(command.sent));
  LogInTo(script + InStep());
  m_client.SetDataTimeouts(7000, 1000);
  for (const CommandCase& command : AllCommands()) {
    m_client.waits.clear();
    EXPECT_EQ(command.run(m_client), kNetNoResponse) << command.sent;
    EXPECT_EQ(m_client.waits, std::vector<long>{7}) << command.sent;
  }
  ExpectInStep();
}

TEST_F(FtpCommands, NeverBecomeTwo) {
  LogInTo(InStep());
  FakeSource source("x");
  for (const char* bad : {"a\r\nDELE b", "a\n", "\r", "a\rb"}) {
    EXPECT_EQ(m_client.DeleteFile(bad), kNetBadCharacters);
    EXPECT_EQ(m_client.ChDir(bad), kNetBadCharacters);
    EXPECT_EQ(m_client.MkDir(bad), kNetBadCharacters);
    EXPECT_EQ(m_client.RmDir(bad), kNetBadCharacters);
    EXPECT_EQ(m_client.RenameFile(bad, "b"), kNetBadCharacters);
    EXPECT_EQ(m_client.RenameFile("a", bad), kNetBadCharacters);
    EXPECT_EQ(m_client.Help(bad), kNetBadCharacters);
    EXPECT_EQ(m_client.Quote(bad), kNetBadCharacters);
    for (bool passive : {false, true}) {
      m_client.SetPassive(passive);
      EXPECT_EQ(m_client.SendFile(source, bad), kNetBadCharacters);
      EXPECT_EQ(m_client.ReceiveFile(source, bad), kNetBadCharacters);
      EXPECT_EQ(m_client.ResumeReceiveFile(source, bad), kNetBadCharacters);
    }
  }
  EXPECT_EQ(m_client.codes, std::vector<int>(m_client.codes.size(), kNetBadCharacters));
  EXPECT_TRUE(source.modes.empty());
  ExpectInStep();
}

TEST_F(FtpCommands, AreNeverCut) {
  const std::string fits(260 - 7, 'x');
  LogInTo(Script{Expect("DELE " + fits), Say("250")} + InStep());
  EXPECT_EQ(m_client.DeleteFile(fits.c_str()), kNetSuccess);
  FakeSource source("x");
  for (const std::string& name : {fits + 'x', std::string(1 << 20, 'x')}) {
    EXPECT_EQ(m_client.DeleteFile(name.c_str()), kNetParameterTooLong);
    EXPECT_EQ(m_client.RenameFile("a", name.c_str()), kNetParameterTooLong);
    EXPECT_EQ(m_client.RenameFile(name.c_str(), "a"), kNetParameterTooLong);
    // One more character fits behind these.
    const std::string longer = name + 'x';
    EXPECT_EQ(m_client.ChDir(longer.c_str()), kNetParameterTooLong);
    EXPECT_EQ(m_client.MkDir(longer.c_str()), kNetParameterTooLong);
    EXPECT_EQ(m_client.RmDir(longer.c_str()), kNetParameterTooLong);
    EXPECT_EQ(m_client.Help(name.c_str()), kNetParameterTooLong);
    for (bool passive : {false, true}) {
      m_client.SetPassive(passive);
      EXPECT_EQ(m_client.SendFile(source, name.c_str()), kNetParameterTooLong);
      EXPECT_EQ(m_client.ReceiveFile(source, name.c_str()), kNetParameterTooLong);
      EXPECT_EQ(m_client.ResumeReceiveFile(source, name.c_str()), kNetParameterTooLong);
    }
  }
  EXPECT_TRUE(source.modes.empty());
  ExpectInStep();
}

TEST_F(FtpCommands, RenameInTwoSteps) {
  const int from = kNetRnfrRefused;
  const int to = kNetRntoRefused;
  Script script;
  for (const auto& replies : kReplies) {
    for (const char* reply : replies) {
      script = script + Script{Expect("RNFR a b"), Reply(reply)};
      if (reply[0] == '3') script = script + Script{Expect("RNTO c d"), Say("250 done")};
    }
    for (const char* reply : replies) {
      script = script + Script{Expect("RNFR a b"), Say("350"), Expect("RNTO c d"), Reply(reply)};
    }
  }
  LogInTo(script + InStep());
  for (size_t i = 0; i < std::size(kReplies); ++i) {
    for (int code : {from, from, 0, from, from}) EXPECT_EQ(m_client.RenameFile("a b", "c d"), code);
    for (int code : {to, 0, to, to, to}) EXPECT_EQ(m_client.RenameFile("a b", "c d"), code);
  }
  ExpectInStep();
}

TEST_F(FtpCommands, ChangeSettingsOnlyWhenAccepted) {
  LogInTo(Script{Expect("MODE B"), Say("200"), Expect("MODE C"), Say("504"), Expect("STRU P"), Say("200"),
                 Expect("STRU R"), Say("504"), Expect("TYPE I"), Say("200"), Expect("TYPE A"), Say("504")} +
          InStep());
  EXPECT_EQ(m_client.SetTransferMode(1), kNetSuccess);
  EXPECT_EQ(m_client.SetTransferMode(2), kNetDenied);
  EXPECT_EQ(m_client.GetTransferMode(), 1);
  EXPECT_EQ(m_client.SetStructure(2), kNetSuccess);
  EXPECT_EQ(m_client.SetStructure(1), kNetDenied);
  EXPECT_EQ(m_client.GetStructure(), 2);
  EXPECT_EQ(m_client.SetTransferType(1), kNetSuccess);
  EXPECT_EQ(m_client.SetTransferType(0), kNetDenied);
  EXPECT_EQ(m_client.GetTransferType(), 1);
  ExpectInStep();
}

TEST_F(FtpCommands, SendNothingForASettingThatDoesNotExistButReadAReply) {
  LogInTo(Script{Say("200 unasked"), Wait(300)} + InStep());
  EXPECT_EQ(m_client.SetTransferMode(4), kNetBadValue);
  EXPECT_EQ(m_client.SetStructure(1000), kNetBadValue);
  EXPECT_EQ(m_client.SetTransferType(2), kNetBadValue);
  EXPECT_EQ(m_client.SetTransferMode(3), kNetSuccess);
  EXPECT_EQ(m_client.GetTransferMode(), 3);
  EXPECT_STREQ(m_client.GetLastReplyText(), "200 unasked");
  m_client.SetDataTimeouts(1000, 1000);
  EXPECT_EQ(m_client.SetStructure(3), kNetNoResponse);
  EXPECT_EQ(m_client.SetStructure(-1), kNetNoResponse);
  m_client.SetDataTimeouts(5000, 1000);
  ExpectInStep();
}

TEST_F(FtpCommands, TellTheCurrentFolder) {
  const struct {
    const char* reply;
    int size;
    const char* path;
  } cases[] = {
      {"257 \"/a b\" is current", 100, "/a b"}, {"257 \"\"", 100, ""},
      {"257 \"/a\"\"b\"", 100, "/a"},           {"257 no quotes at all", 100, "no quotes at all"},
      {"257 no quotes at all", 10, "no quote"},  // one less than would fit
      {"257 \"/only one", 100, "\"/only one"},  {"257 \"/a b\" is current", 4, "/a "},
      {"257 \"/a b\" is current", 1, ""},       {"257", 100, ""},
  };
  Script script;
  for (const auto& pwd : cases) script = script + Script{Expect("PWD"), Say(pwd.reply)};
  LogInTo(script + Script{Expect("PWD"), Say("550 \"/x\" gone")} + InStep());
  char buffer[104];
  for (const auto& pwd : cases) {
    std::fill(std::begin(buffer), std::end(buffer), '#');
    EXPECT_EQ(m_client.GetCurDir(buffer, pwd.size), kNetSuccess) << pwd.reply;
    EXPECT_STREQ(buffer, pwd.path);
    EXPECT_EQ(buffer[pwd.size], '#') << "beyond the buffer";
  }
  EXPECT_EQ(m_client.GetCurDir(buffer, 100), kNetDenied);
  EXPECT_STREQ(buffer, "\"/x\" gone");
  EXPECT_EQ(m_client.GetCurDir(nullptr, 100), kNetNullBuffer);
  EXPECT_EQ(m_client.GetCurDir(buffer, 0), kNetBufferTooShort);
  ExpectInStep();
}

TEST_F(FtpCommands, TellNoFolderWithoutAnAnswer) {
  LogInTo({Expect("PWD"), Close()});
  char buffer[] = "before";
  EXPECT_EQ(m_client.GetCurDir(buffer, sizeof buffer), kNetNoResponse);
  EXPECT_STREQ(buffer, "");
  ExpectPlayed();
}

TEST_F(FtpCommands, KeepNoLinesOfALateReply) {
  const Script announced = {Expect("CDUP"), Say("150 soon"), Say("250 late")};
  LogInTo(announced + Script{Expect("SITE x"), Say("200 own")} + announced +
          Script{Expect("HELP x"), Say("214 own")} + InStep());
  const std::function<int()> commands[] = {[this] { return m_client.Quote("SITE x"); },
                                           [this] { return m_client.Help("x"); }};
  for (const auto& command : commands) {
    EXPECT_EQ(m_client.CdUp(), kNetDenied);
    EXPECT_EQ(command(), kNetSuccess);
    ASSERT_EQ(m_client.GetReplyLineCount(), 1);
    EXPECT_STREQ(m_client.GetReplyLineText(0) + 4, "own");
  }
  ExpectInStep();
}

TEST_F(FtpCommands, QuoteAnything) {
  const std::string line(256, 'x');
  LogInTo(Script{Expect(line), Say("500"), Expect(line), Expect("yy"), Say("500 one"), Say("500 two")} +
          InStep());
  EXPECT_EQ(m_client.Quote(nullptr), kNetQuoteEmpty);
  EXPECT_EQ(m_client.Quote(""), kNetQuoteEmpty);
  EXPECT_EQ(m_client.Quote(line.c_str()), kNetSuccess);
  EXPECT_EQ(m_client.GetReplyLineCount(), 1);
  EXPECT_EQ(m_client.Quote((line + "yy").c_str()), kNetSuccess);
  m_client.aborted = true;
  EXPECT_EQ(m_client.Quote("SITE x"), kNetAborted) << "nothing is sent any more";
  m_client.aborted = false;
  ExpectInStep();
}

}  // namespace
