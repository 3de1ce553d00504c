// Every reply of a login, a transfer and a listing, from a server that says more than it must, nothing,
// or goodbye.
#include <functional>

#include "net/testing/ftp_fixture.h"
#include "support/open_handles.h"

namespace {

using Step = ScriptedServer::Step;
using Script = ScriptedServer::Script;

// An operation as the server sees it, and what precedes each of its replies. They may have several lines.
class Scene {
 public:
  explicit Scene(bool hasLongReplies = false) : m_bLong(hasLongReplies) {}

  Scene& Do(Step step) {
    m_script.push_back(std::move(step));
    return *this;
  }
  Scene& Reply(const std::string& code) {
    m_unanswered.push_back(m_script);
    return Say(code, ::Say(code + " at last"));
  }
  // A step that hears its command, and replies.
  Scene& Answer(const std::string& code, Step step) {
    m_unanswered.push_back(m_script + Script{HearCommand()});
    return Say(code, std::move(step));
  }

  const Script& All() const { return m_script; }
  size_t ReplyCount() const { return m_unanswered.size(); }
  // All before that reply.
  const Script& Until(size_t reply) const { return m_unanswered[reply]; }

 private:
  static Step HearCommand() {
    return [](ScriptedServer::Stage& stage) { return !stage.control.HearLine().empty(); };
  }
  Scene& Say(const std::string& code, Step step) {
    const std::string ahead =
        code + "-(1,2,3,4,5,6) \"not this\"\r\n " + code + " nor this\r\n999 or this\r\n";
    if (m_bLong) Do(SayRaw(ahead));
    return Do(std::move(step));
  }

  bool m_bLong;
  Script m_script;
  std::vector<Script> m_unanswered;
};

class FtpSteps : public FtpTest {
 protected:
  struct Operation {
    const char* name;
    bool isPassive;
    Scene scene;
    std::function<int()> run;
  };

  std::vector<Operation> Operations(bool hasLongReplies = false) {
    const auto get = [this] { return m_client.ReceiveFile(m_source, "x"); };
    const auto resume = [this] { return m_client.ResumeReceiveFile(m_source, "x"); };
    const auto put = [this] { return m_client.SendFile(m_source, "x"); };
    const auto list = [this] { return m_client.List(); };
    const auto rename = [this] { return m_client.RenameFile("a", "b"); };
    const auto passive = [&] { return Scene(hasLongReplies).Answer("227", AnswerPasv()); };
    const auto active = [&] { return Scene(hasLongReplies).Answer("200", AnswerPort()); };
    const auto rest = [&](Scene scene) { return scene.Do(Expect("REST 3")).Reply("350"); };
    const auto retr = [](Scene scene, Step open) {
      // The server that is to be connected to says so first.
      scene.Do(Expect("RETR x")).Reply("150").Do(std::move(open));
      return scene.Do(SendData("y")).Do(CloseData()).Reply("226");
    };
    const auto stor = [](Scene scene, Step open) {
      scene.Do(Expect("STOR x")).Reply("150").Do(std::move(open));
      return scene.Do(HearData()).Reply("226");
    };
    const auto names = [](Scene scene, Step open) {
      scene.Do(Expect("LIST")).Do(std::move(open)).Reply("150");
      return scene.Do(SendData("y\r\n")).Do(CloseData()).Reply("226");
    };
    return {
        {"get, passive", true, retr(passive(), AcceptData()), get},
        {"resume, passive", true, retr(rest(passive()), AcceptData()), resume},
        {"put, passive", true, stor(passive(), AcceptData()), put},
        {"list, passive", true, names(passive(), AcceptData()), list},
        {"get, active", false, retr(active(), ConnectData()), get},
        {"resume, active", false, retr(rest(active()), ConnectData()), resume},
        {"put, active", false, stor(active(), ConnectData()), put},
        {"list, active", false, names(active(), ConnectData()), list},
        {"rename", false,
         Scene(hasLongReplies).Do(Expect("RNFR a")).Reply("350").Do(Expect("RNTO b")).Reply("250"), rename},
    };
  }
  int Run(const Operation& operation) {
    m_source.bytes = "old";
    m_client.SetPassive(operation.isPassive);
    m_client.codes.clear();
    const int code = operation.run();
    EXPECT_FALSE(m_client.codes.empty()) << operation.name;
    if (!m_client.codes.empty()) {
      EXPECT_EQ(m_client.codes.back(), code) << operation.name;
    }
    return code;
  }

  static Scene Login(bool hasLongReplies = false) {
    Scene scene(hasLongReplies);
    scene.Reply("220").Do(Expect("USER ann")).Reply("331").Do(Expect("PASS secret")).Reply("332");
    return scene.Do(Expect("ACCT surveys")).Reply("230");
  }
  static Scene LoginSettings(bool hasLongReplies = false) {
    Scene scene(hasLongReplies);
    scene.Do(Expect("TYPE A")).Reply("200").Do(Expect("MODE S")).Reply("200");
    return scene.Do(Expect("STRU F")).Reply("200");
  }
  int ConnectWithAccount() { return m_client.FTPConnect("127.0.0.1", "ann", "secret", "surveys"); }

  FakeSource m_source;
};

TEST_F(FtpSteps, OfALoginMayBeAnsweredInSeveralLines) {
  Serve(Login(true).All() + LoginSettings(true).All() + InStep());
  EXPECT_EQ(ConnectWithAccount(), kNetSuccess);
  EXPECT_EQ(m_client.GetTransferType(), 0);
  EXPECT_FALSE(m_client.HasSeen(kNetDenied));
  ExpectInStep();
}

TEST_F(FtpSteps, OfALoginEndItWhenTheyAreNotAnswered) {
  for (size_t reply = 0; reply < Login().ReplyCount(); ++reply) {
    std::atomic<bool> isOver = false;
    Serve(Login().Until(reply) + Script{Await(isOver)});
    EXPECT_EQ(ConnectWithAccount(), kNetNoResponse) << reply;
    EXPECT_EQ(m_client.waits.back(), 5);
    EXPECT_EQ(m_time.vainWaits.back(), 5000) << "it waited";
    m_client.FTPClose();
    isOver = true;
    EXPECT_EQ(m_server->Finish(), "");
  }
}

TEST_F(FtpSteps, OfALoginThatSetItUpMayStayUnanswered) {
  Serve(Greeting() + Script{Expect("TYPE A"), Expect("MODE S"), Expect("STRU F")} + InStep());
  m_client.SetDataTimeouts(1000, 1000);
  EXPECT_EQ(Connect(), kNetSuccess);
  EXPECT_EQ(std::count(m_client.codes.begin(), m_client.codes.end(), kNetNoResponse), 3);
  EXPECT_EQ(m_client.GetTransferType(), 1);
  m_client.SetDataTimeouts(5000, 5000);
  ExpectInStep();
}

TEST_F(FtpSteps, MayBeAnsweredInSeveralLines) {
  Script script;
  for (const Operation& operation : Operations(true)) script = script + operation.scene.All();
  LogInTo(script + InStep());
  for (const Operation& operation : Operations()) {
    EXPECT_EQ(Run(operation), kNetSuccess) << operation.name;
    EXPECT_EQ(m_client.GetReplyLineCount(), 4) << operation.name;
  }
  ExpectInStep();
}

TEST_F(FtpSteps, FailWhenTheyAreNotAnsweredAndStayInStep) {
  for (const Operation& operation : Operations()) {
    for (size_t reply = 0; reply < operation.scene.ReplyCount(); ++reply) {
      LogInTo(operation.scene.Until(reply) + InStep());
      m_client.waits.clear();
      EXPECT_EQ(Run(operation), kNetNoResponse) << operation.name << " " << reply;
      EXPECT_NE(std::find(m_client.waits.begin(), m_client.waits.end(), 5), m_client.waits.end());
      EXPECT_EQ(m_source.openNow, 0);
      ExpectInStep();
    }
  }
}

TEST_F(FtpSteps, FailWhenTheServerGoesAndLeaveNothingOpen) {
  const Script ends[] = {{CloseData(), Close()}, {ResetData(), Reset()}, {SayRaw("2"), CloseData(), Close()}};
  const auto playAll = [&] {
    for (const Operation& operation : Operations()) {
      for (size_t reply = 0; reply < operation.scene.ReplyCount(); ++reply) {
        for (const Script& end : ends) {
          LogInTo(operation.scene.Until(reply) + end);
          EXPECT_NE(Run(operation), kNetSuccess) << operation.name << " " << reply;
          EXPECT_EQ(m_time.vainWaits.size(), 0U) << operation.name << " " << reply;
          EXPECT_EQ(m_source.openNow, 0);
          ExpectPlayed();
        }
      }
    }
    m_server.reset();
  };
  EXPECT_FALSE(LeavesMoreAndMoreOpen(playAll));
}

}  // namespace
