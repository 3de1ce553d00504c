// CUT_FTPClient: the commands that need no data connection.
#include <cstring>

#include "net/error_codes.h"
#include "net/ftp_client.h"
#include "net/ftp_client_rules.h"
#include "net/ftp_reply.h"

namespace {

constexpr int kQuoteLine = 256;

}  // namespace

int CUT_FTPClient::RenameFile(const char* oldName, const char* newName) {
  char from[kFtpLineSize];
  char to[kFtpLineSize];
  // Both first: a rename that is begun must be finished.
  if (const int refused = CheckText("RNFR %s\r\n", oldName, from)) return OnError(refused);
  if (const int refused = CheckText("RNTO %s\r\n", newName, to)) return OnError(refused);
  const int failed = CheckLastReply(Ask(from), 300, 399, kNetRnfrRefused);
  if (failed != kNetSuccess) return OnError(failed);
  return OnError(CheckLastReply(Ask(to), 200, 299, kNetRntoRefused));
}

int CUT_FTPClient::DeleteFile(const char* remoteName) {
  return OnError(AskWithText("DELE %s\r\n", remoteName, 200, 299, kNetDenied));
}

int CUT_FTPClient::GetCurDir(char* buffer, int size) {
  if (buffer == nullptr) return OnError(kNetNullBuffer);
  if (size < 1) return OnError(kNetBufferTooShort);
  buffer[0] = '\0';
  const int failed = CheckLastReply(Ask("PWD\r\n", buffer, size), 200, 299, kNetDenied);
  if (failed == kNetSuccess) QuotedPath(m_szLine, buffer, size);
  return OnError(failed);
}

int CUT_FTPClient::ChDir(const char* directory) {
  return OnError(AskWithText("CWD %s\r\n", directory, 200, 299, kNetDenied));
}

int CUT_FTPClient::CdUp() {
  return OnError(CheckLastReply(Ask("CDUP\r\n"), 200, 299, kNetDenied));
}

int CUT_FTPClient::MkDir(const char* directory) {
  return OnError(AskWithText("MKD %s\r\n", directory, 200, 299, kNetDenied));
}

int CUT_FTPClient::RmDir(const char* directory) {
  return OnError(AskWithText("RMD %s\r\n", directory, 200, 299, kNetDenied));
}

int CUT_FTPClient::NoOp() {
  return OnError(CheckLastReply(Ask("NOOP\r\n"), 200, 299, kNetDenied));
}

int CUT_FTPClient::Help(const char* topic) {
  char command[kFtpLineSize] = "HELP\r\n";
  if (topic != nullptr && *topic != '\0') {
    if (const int refused = CheckText("HELP %s\r\n", topic, command)) return OnError(refused);
  }
  ReadLateReplies();
  m_replyLines.Clear();
  return OnError(CheckLastReply(Ask(command), 1, 299, kNetDenied));
}

int CUT_FTPClient::Quote(const char* command) {
  if (command == nullptr || *command == '\0') return OnError(kNetQuoteEmpty);
  if (HasCommandBreak(command)) return OnError(kNetBadCharacters);
  ReadLateReplies();
  m_replyLines.Clear();
  if (SendInLines(command, -1, kQuoteLine) == 0 && IsAborted()) return OnError(kNetAborted);
  const int code = GetResponseCode(*this);
  // The server takes what follows the first line for commands, and answers each of them.
  if (IsPreliminary(code) || std::strlen(command) > kQuoteLine) m_nLateReplyWait = kLateReplySeconds;
  return OnError(code == 0 ? kNetNoResponse : kNetSuccess);
}
