#include "net/testing/scripted_server.h"

#include <algorithm>
#include <cstdio>

namespace {

using Stage = ScriptedServer::Stage;
using Step = ScriptedServer::Step;

// No socket, but something that is waited for.
constexpr SocketHandle kAwaitsTest = -2;
constexpr int kPatience = 180000;  // milliseconds

bool Fail(Stage& stage, const std::string& problem) {
  if (stage.problem.empty()) stage.problem = problem;
  return false;
}

std::string PortNumbers(std::uint16_t port, std::string address = "127.0.0.1") {
  std::replace(address.begin(), address.end(), '.', ',');
  return address + "," + std::to_string(port / 256) + "," + std::to_string(port % 256);
}

}  // namespace

ScriptedServer::ScriptedServer(Script script)
    : m_port(m_listener.Port()), m_thread([this, script = std::move(script)] { Play(script); }) {}

ScriptedServer::~ScriptedServer() {
  Finish();
}

void ScriptedServer::Play(const Script& script) {
  SetHearingMark(&m_hearing);
  m_stage.hearing = &m_hearing;
  m_stage.control = m_listener.Accept();
  bool goesOn = m_stage.control.IsOpen() || Fail(m_stage, "nobody connected");
  for (size_t i = 0; goesOn && i < script.size(); ++i) {
    goesOn = script[i](m_stage);
    if (!goesOn && !m_stage.problem.empty())
      m_stage.problem = "step " + std::to_string(i) + ": " + m_stage.problem;
  }
  m_stage.data.Close();
  m_stage.listener.reset();
  m_stage.control.Close();
}

bool ScriptedServer::IsIdle() const {
  const SocketHandle socket = m_hearing;
  if (socket == kNoSocket) return false;
  return socket == kAwaitsTest ||
         WaitForSystemSocket(socket, SocketEvent::kReadable, 0) == SocketWait::kNotYet;
}

const std::string& ScriptedServer::Finish() {
  if (m_thread.joinable()) m_thread.join();
  return m_stage.problem;
}

Step Say(const std::string& line) {
  return SayRaw(line + "\r\n");
}

Step Reply(const std::string& line) {
  return SayRaw(line + "\r\n" + (line.starts_with('1') ? "226 at last\r\n" : ""));
}

// The client may have gone: what it then does is what the test is about.
Step SayRaw(const std::string& bytes) {
  return [bytes](Stage& stage) {
    stage.control.Say(bytes);
    return true;
  };
}

Step Expect(const std::string& line) {
  return [line](Stage& stage) {
    const std::string heard = stage.control.HearLine();
    return heard == line + "\r\n" || Fail(stage, "expected \"" + line + "\", heard \"" + heard + "\"");
  };
}

Step ExpectEnd() {
  return [](Stage& stage) {
    const std::string heard = stage.control.HearToEnd();
    return heard.empty() || Fail(stage, "expected the end, heard \"" + heard + "\"");
  };
}

Step Wait(int milliseconds) {
  return [milliseconds](Stage&) {
    SleepFor(milliseconds);
    return true;
  };
}

Step Await(const std::atomic<bool>& isSet) {
  return [&isSet](Stage& stage) {
    *stage.hearing = kAwaitsTest;
    for (int waited = 0; waited < kPatience && !isSet; waited += 5) SleepFor(5);
    *stage.hearing = kNoSocket;
    return isSet || Fail(stage, "the test did not go on");
  };
}

Step Close() {
  return [](Stage& stage) {
    stage.control.Close();
    return true;
  };
}

Step Reset() {
  return [](Stage& stage) {
    stage.control.Reset();
    return true;
  };
}

Step SayForEver(const std::string& bytes) {
  return [bytes](Stage& stage) {
    while (stage.control.Say(bytes)) {
    }
    return true;
  };
}

Step AnswerPasv(const std::string& address, const std::string& named) {
  return [address, named](Stage& stage) {
    if (!Expect("PASV")(stage)) return false;
    stage.listener = std::make_unique<TestListener>(8, address);
    return Say("227 Entering Passive Mode (" + PortNumbers(stage.listener->Port(), named) + ").")(stage);
  };
}

Step AcceptData() {
  return [](Stage& stage) {
    if (stage.listener == nullptr) return Fail(stage, "there is no data port");
    stage.data = stage.listener->Accept();
    return stage.data.IsOpen() || Fail(stage, "nobody came to the data port");
  };
}

Step AnswerPort() {
  return [](Stage& stage) {
    const std::string heard = stage.control.HearLine();
    int high = 0;
    int low = 0;
    std::sscanf(heard.c_str(), "PORT 127,0,0,1,%d,%d", &high, &low);
    stage.offered = static_cast<std::uint16_t>(high * 256 + low);
    if (heard != "PORT " + PortNumbers(stage.offered) + "\r\n")
      return Fail(stage, "no PORT: \"" + heard + "\"");
    stage.ports.push_back(stage.offered);
    return Say("200 PORT command successful.")(stage);
  };
}

Step ConnectData() {
  return [](Stage& stage) {
    stage.data = ConnectToLoopback(stage.offered);
    return stage.data.IsOpen() || Fail(stage, "the client does not listen");
  };
}

Step ConnectDataInVain() {
  return [](Stage& stage) {
    return !ConnectToLoopback(stage.offered).IsOpen() || Fail(stage, "the client still listens");
  };
}

Step SendData(const std::string& bytes) {
  return [bytes](Stage& stage) {
    stage.data.Say(bytes);
    return true;
  };
}

Step SendDataForEver(const std::string& bytes) {
  return [bytes](Stage& stage) {
    while (stage.data.Say(bytes)) {
    }
    return true;
  };
}

Step HearData() {
  return [](Stage& stage) {
    stage.heard += stage.data.HearToEnd();
    return true;
  };
}

Step CloseData() {
  return [](Stage& stage) {
    stage.data.Close();
    return true;
  };
}

Step ResetData() {
  return [](Stage& stage) {
    stage.data.Reset();
    return true;
  };
}

Step ExpectDataLeft() {
  return [](Stage& stage) { return stage.data.IsLeftByPeer() || Fail(stage, "the data connection is open"); };
}

ScriptedServer::Script operator+(ScriptedServer::Script first, const ScriptedServer::Script& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}
