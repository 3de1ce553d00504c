// CUT_FTPClient: from the connection to its end.
#include "net/ftp_client.h"

#include <algorithm>

#include "net/error_codes.h"
#include "net/ftp_client_rules.h"

namespace {

constexpr int kFirstDataPorts = 20000;
constexpr std::int32_t kShortestTimeout = 1000;  // milliseconds

}  // namespace

CUT_FTPClient::CUT_FTPClient()
    : m_data(*this),
      m_nNextDataPort(kLowestDataPort + static_cast<std::int32_t>(static_cast<std::uint32_t>(SystemTicks()) %
                                                                  kFirstDataPorts)) {}

CUT_FTPClient::~CUT_FTPClient() {
  m_replyLines.Clear();
  ClearDirList();
  CUT_FTPClient::FTPClose();
}

int CUT_FTPClient::SetControlPort(int port) {
  if (!IsPort(port)) return OnError(kNetBadValue);
  m_nControlPort = port;
  return OnError(kNetSuccess);
}

int CUT_FTPClient::SetNextDataPort(int port) {
  if (port < 1 || port > kHighestDataPort) return OnError(kNetBadValue);
  m_nNextDataPort = port;
  return OnError(kNetSuccess);
}

void CUT_FTPClient::SetDataTimeouts(std::int32_t receiveMilliseconds, std::int32_t sendMilliseconds) {
  m_data.PresetTimeouts(std::max(receiveMilliseconds, kShortestTimeout),
                        std::max(sendMilliseconds, kShortestTimeout));
}

void CUT_FTPClient::SetWaitListener(WaitListener* listener) {
  CUT_WSClient::SetWaitListener(listener);
  m_data.SetWaitListener(listener);
}

int CUT_FTPClient::FTPConnect(const char* host, const char* user, const char* password, const char* account) {
  FTPClose();
  m_replyLines.Clear();
  m_szLastReply[0] = '\0';
  LoginCommands commands;
  for (const int refused :
       {CheckText("USER %s\r\n", user, commands.user), CheckText("PASS %s\r\n", password, commands.password),
        CheckText("ACCT %s\r\n", account, commands.account)}) {
    if (refused != kNetSuccess) return OnError(refused);
  }
  const int connected = Connect(static_cast<std::uint16_t>(m_nControlPort), host, m_nConnectTimeout);
  if (connected != kNetSuccess) return OnError(AfterWait(connected));
  if (const int refused = LogIn(commands)) return OnError(refused);

  // A server that refuses one of these can still be worked with.
  SetTransferType(0);
  SetTransferMode(0);
  SetStructure(0);
  m_bConnected = 1;
  return OnError(kNetSuccess);
}

int CUT_FTPClient::OnSocketConnected(SocketHandle /*socket*/, const char* /*remoteAddress*/) {
  const int failed = CheckReply(GetResponseCode(*this), 200, 399, kNetConnectionFailed);
  if (failed != kNetSuccess) return OnError(failed);
  return OnError(IsAborted() ? kNetAborted : kNetSuccess);
}

// The next step is taken only when the server asks for it with a reply of the third class.
int CUT_FTPClient::LogIn(const LoginCommands& commands) {
  const struct {
    const char* command;
    int failure;
  } steps[] = {{commands.user, kNetUserRefused},
               {commands.password, kNetPassRefused},
               {commands.account, kNetAcctRefused}};
  for (const auto& [command, failure] : steps) {
    const int reply = Ask(command);
    if (const int refused = CheckLastReply(reply, 200, 399, failure)) return refused;
    if (reply < 300) break;
  }
  return kNetSuccess;
}

int CUT_FTPClient::FTPClose() {
  Send("Quit\r\n");
  CloseConnection();
  m_data.CloseConnection();
  m_bConnected = 0;
  m_nLateReplyWait = -1;
  return OnError(kNetSuccess);
}

int CUT_FTPClient::SetTransferType(int type) {
  if (type != 0 && type != 1) return OnError(kNetBadValue);
  const int failed = CheckLastReply(Ask(type == 1 ? "TYPE I\r\n" : "TYPE A\r\n"), 200, 299, kNetDenied);
  if (failed == kNetSuccess) m_bBinary = type;
  return OnError(failed);
}

int CUT_FTPClient::SetTransferMode(int mode) {
  return AskForChoice(mode, {"MODE S\r\n", "MODE B\r\n", "MODE C\r\n"}, m_nTransferMode);
}

int CUT_FTPClient::SetStructure(int structure) {
  return AskForChoice(structure, {"STRU F\r\n", "STRU R\r\n", "STRU P\r\n"}, m_nStructure);
}

// Values below 4 that have no command are waited for all the same.
int CUT_FTPClient::AskForChoice(int value, const char* const (&commands)[3], std::int32_t& stored) {
  if (value >= 4) return OnError(kNetBadValue);
  if (value >= 0 && value <= 2) SendCommand(commands[value]);
  const int failed = CheckLastReply(GetResponseCode(*this), 200, 299, kNetDenied);
  if (failed == kNetSuccess) stored = value;
  return OnError(failed);
}
