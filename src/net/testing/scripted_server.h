// A server that plays a script on 127.0.0.1: it says what it is told to say, checks what it hears byte
// for byte, and opens, uses, breaks or forgets data connections as told. It plays in a thread of its
// own, one client at a time; no step of it waits longer than 20 seconds. What went wrong, and what
// arrived on the data connection, is asked for after Finish. Test code.
#ifndef MOSAICON_NET_TESTING_SCRIPTED_SERVER_H_
#define MOSAICON_NET_TESTING_SCRIPTED_SERVER_H_

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "net/testing/sockets.h"

class ScriptedServer {
 public:
  struct Stage {
    TestSocket control;
    HearingMark* hearing = nullptr;
    std::unique_ptr<TestListener> listener;  // for data, passive
    TestSocket data;
    std::uint16_t offered = 0;  // the client's port of the last PORT
    std::vector<int> ports;     // of every PORT
    std::string heard;          // on the data connection
    std::string problem;        // the first thing that went wrong
  };
  // False ends the play.
  using Step = std::function<bool(Stage&)>;
  using Script = std::vector<Step>;

  // Waits for a client and plays at once.
  explicit ScriptedServer(Script script);
  ~ScriptedServer();

  std::uint16_t Port() const { return m_port; }

  // True when it does nothing before the client has done something that has not been done yet. Any thread.
  bool IsIdle() const;

  // Waits for the end of the script. Returns what went wrong, "" when everything was as expected.
  const std::string& Finish();

  const std::string& HeardOnData() const { return m_stage.heard; }
  const std::vector<int>& OfferedPorts() const { return m_stage.ports; }

 private:
  void Play(const Script& script);

  TestListener m_listener;
  std::uint16_t m_port;
  Stage m_stage;
  HearingMark m_hearing = kNoSocket;
  std::thread m_thread;  // the last one, for it uses the others
};

// The steps. Lines are given without their CR LF.
ScriptedServer::Step Say(const std::string& line);
// After a preliminary reply, the last one that it announces, too.
ScriptedServer::Step Reply(const std::string& line);
ScriptedServer::Step SayRaw(const std::string& bytes);
// Fails when the client sends another line, or nothing.
ScriptedServer::Step Expect(const std::string& line);
// The client says no more and closes.
ScriptedServer::Step ExpectEnd();
ScriptedServer::Step Wait(int milliseconds);
ScriptedServer::Step Close();
ScriptedServer::Step Reset();
// Until the test has set it.
ScriptedServer::Step Await(const std::atomic<bool>& isSet);
// Says so over and over until the client has gone.
ScriptedServer::Step SayForEver(const std::string& bytes);

// Passive: hears PASV, opens a port and says where. The client's connection is taken by AcceptData. The
// port is one of address, and named is what the answer says instead.
ScriptedServer::Step AnswerPasv(const std::string& address = "127.0.0.1",
                                const std::string& named = "127.0.0.1");
ScriptedServer::Step AcceptData();
// Active: hears PORT of 127.0.0.1 and accepts it; ConnectData goes there.
ScriptedServer::Step AnswerPort();
ScriptedServer::Step ConnectData();
// The client must not be there any more.
ScriptedServer::Step ConnectDataInVain();

ScriptedServer::Step SendData(const std::string& bytes);
ScriptedServer::Step SendDataForEver(const std::string& bytes);
// To the end of the data.
ScriptedServer::Step HearData();
ScriptedServer::Step CloseData();
ScriptedServer::Step ResetData();
// The client leaves the data connection, whatever it has sent on it.
ScriptedServer::Step ExpectDataLeft();

// One after the other.
ScriptedServer::Script operator+(ScriptedServer::Script first, const ScriptedServer::Script& second);

#endif  // MOSAICON_NET_TESTING_SCRIPTED_SERVER_H_
