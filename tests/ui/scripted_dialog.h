// The upload dialog against a server that plays a script: pieces of scripts, and the fixture.
#ifndef MOSAICON_TESTS_UI_SCRIPTED_DIALOG_H_
#define MOSAICON_TESTS_UI_SCRIPTED_DIALOG_H_

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "net/testing/scripted_server.h"
#include "ui/publish_fixture.h"

using Script = ScriptedServer::Script;
using Strings = std::vector<std::string>;

inline constexpr UINT_PTR kKeepAliveTimer = 100;
// In ms. What is not to be waited for takes 30 seconds and more, or for ever.
inline constexpr DWORD kPromptly = 10000;
inline constexpr DWORD kSoon = 25000;

inline Script LoggingIn(const std::string& type = "I") {
  return {Say("220 ready"),  Expect("USER ann"), Say("331 whose?"), Expect("PASS secret"),
          Say("230 in"),     Expect("TYPE A"),   Say("200 A"),      Expect("MODE S"),
          Say("200 S"),      Expect("STRU F"),   Say("200 F"),      Expect("TYPE " + type),
          Say("200 " + type)};
}

inline Script Listing(const std::string& lines) {
  return {AnswerPasv(),    Expect("LIST"), AcceptData(),   Say("150 here"),
          SendData(lines), CloseData(),    Say("226 done")};
}

// One command, answered.
inline Script Answering(const std::string& command, const std::string& reply) {
  return {Expect(command), Say(reply)};
}

inline Script Receiving(const std::string& name) {
  return {AnswerPasv(), Expect("STOR " + name), AcceptData(), Say("150 go on"), HearData(),
          CloseData(),  Say("226 done")};
}

inline const Script kLeaving = {Expect("Quit"), ExpectEnd()};
inline constexpr char kOneFolder[] = "drwxr-xr-x 2 ann ann 4096 Mar 07 2014 x\r\n";

class ScriptedDialog : public PublishTest {
 protected:
  void TearDown() override {
    PublishTest::TearDown();
    EXPECT_EQ(m_server != nullptr ? m_server->Finish() : "", "");
  }

  std::string Serve(const Script& script) {
    m_server = std::make_unique<ScriptedServer>(script);
    return "127.0.0.1:" + std::to_string(m_server->Port());
  }
  Login LoginTo(const Script& script) { return {.host = Serve(script)}; }

  // Serves the login, one folder and script; connects. The folder to upload has the files given.
  bool ConnectTo(const Script& script, const Strings& files = {"a", "b", "c"}) {
    for (const std::string& file : files) WriteFileIn(Path("up\\" + file), file);
    return OpenUpload(Path("up")) && Connect(LoginTo(LoggingIn() + Listing(kOneFolder) + script));
  }
  void PostTimer() { Ftp().Post(WM_TIMER, kKeepAliveTimer); }
  // What was posted before, clicks for example, has been handled when this returns: one of the last things
  // to be handled selects something of the host's name.
  void WaitForTurn() {
    const Window host = FtpItem(IDC_FTP_HOST);
    const auto end = [&host] { return HIWORD(host.Send(EM_GETSEL)); };
    const WORD wanted = end() == 1 ? 2 : 1;
    host.Post(EM_SETSEL, 0, wanted);
    EXPECT_TRUE(WaitUntil([&] { return end() == wanted; }));
  }

  // A step that waits for Go; HasCome tells that the server is there.
  ScriptedServer::Step Gate() {
    return [this](ScriptedServer::Stage&) {
      m_bAtGate = true;
      for (int i = 0; i < 12000 && !m_bGo; ++i) Sleep(10);
      return m_bGo.load();
    };
  }
  bool IsAtGate() {
    return WaitUntil([this] { return m_bAtGate.load(); });
  }
  void Go() { m_bGo = true; }

  std::unique_ptr<ScriptedServer> m_server;
  std::atomic<bool> m_bAtGate = false;
  std::atomic<bool> m_bGo = false;
};

#endif  // MOSAICON_TESTS_UI_SCRIPTED_DIALOG_H_
