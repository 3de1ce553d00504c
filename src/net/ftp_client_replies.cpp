// CUT_FTPClient: commands go out, replies come in.
#include <algorithm>
#include <string_view>

#include "net/error_codes.h"
#include "net/ftp_client.h"
#include "net/ftp_client_rules.h"
#include "net/ftp_reply.h"
#include "net/timeout_clock.h"

namespace {

constexpr int kMaxPreliminaryReplies = 16;

// A reply that is still coming after as many times the wait for one line will never end.
constexpr int kReplyPatience = 4;

// How long one line may take, which is never nothing.
std::uint64_t LineMilliseconds(long seconds) {
  return static_cast<std::uint64_t>(std::max(seconds, 1L)) * 1000;
}

// The lines of a connection. An abort does not end a reply that is on its way, or the next command
// would get it; but it limits the wait for all of it to what one line may take.
class ReplyLines : public ReplySource {
 public:
  ReplyLines(CUT_WSClient& connection, long seconds)
      : m_connection(connection),
        m_nSeconds(seconds),
        m_nLineTime(LineMilliseconds(seconds)),
        m_nStart(TimeoutClock()) {
    // Otherwise one line could take a wait for each of its bytes.
    m_connection.SetLineDeadline(m_nStart + kReplyPatience * m_nLineTime);
  }
  ~ReplyLines() override { m_connection.SetLineDeadline(0); }
  ReplyLines(const ReplyLines&) = delete;
  ReplyLines& operator=(const ReplyLines&) = delete;

  int NextLine(char* buffer, size_t size) override {
    if (IsEndless()) return 0;
    int count = std::max(m_connection.ReceiveLine(buffer, size, m_nSeconds), 0);
    if (!IsWhole(buffer, count, size) && m_connection.IsAborted()) {
      count += ReceiveRest(buffer + count, size - static_cast<size_t>(count));
    }
    m_bWhole = IsWhole(buffer, count, size);
    m_bEmpty = m_bEmpty && count == 0;
    return count;
  }

  // False when the last line has not come to its end.
  bool IsLastWhole() const { return m_bWhole; }
  // Nothing came at all.
  bool IsEmpty() const { return m_bEmpty; }
  bool IsEndless() const { return TimeoutClock() - m_nStart >= kReplyPatience * m_nLineTime; }

 private:
  static bool IsWhole(const char* buffer, int count, size_t size) {
    return count > 0 && (buffer[count - 1] == '\n' || static_cast<size_t>(count) + 1 == size);
  }
  int ReceiveRest(char* buffer, size_t size) {
    const std::uint64_t now = TimeoutClock();
    const std::uint64_t deadline = m_nStart + m_nLineTime;
    if (now >= deadline) return 0;
    const auto seconds = static_cast<long>((deadline - now + 999) / 1000);
    return std::max(m_connection.ReceiveLineDespiteAbort(buffer, size, seconds, deadline), 0);
  }

  CUT_WSClient& m_connection;
  long m_nSeconds;
  std::uint64_t m_nLineTime;  // milliseconds
  std::uint64_t m_nStart;
  bool m_bWhole = true;
  bool m_bEmpty = true;
};

int CopyOrTell(std::string_view text, char* buffer, int size) {
  return size >= 0 && CopyWhole(text, buffer, static_cast<size_t>(size)) ? kNetSuccess : kNetBufferTooShort;
}

}  // namespace

int CUT_FTPClient::GetResponseCode(CUT_WSClient& connection, char* text, int size) {
  ReplyLines lines(connection, m_data.GetReceiveTimeout() / 1000);
  const int received = ReadReply(lines, m_szLine, m_replyLines);
  const int code = lines.IsEndless() ? 0 : received;
  if (code == 0 || !lines.IsLastWhole()) m_nLateReplyWait = std::max(m_nLateReplyWait, 0);
  // A line without a code is no answer, but shows what the server has to say.
  if (lines.IsEmpty() || lines.IsEndless()) return 0;
  CopyCut(m_szLine, m_szLastReply);
  if (text != nullptr) CopyReplyText(m_szLine, text, size);
  return code;
}

// The command is what format makes of text, or empty when it is refused.
int CUT_FTPClient::CheckText(const char* format, const char* text, char (&command)[kFtpLineSize]) {
  command[0] = '\0';
  if (text == nullptr) text = "";
  if (HasCommandBreak(text)) return kNetBadCharacters;
  return FormatCommand(command, format, text) ? kNetSuccess : kNetParameterTooLong;
}

void CUT_FTPClient::SendCommand(const char* command) {
  ReadLateReplies();
  Send(command);
}

int CUT_FTPClient::Ask(const char* command, char* text, int size) {
  SendCommand(command);
  return GetResponseCode(*this, text, size);
}

int CUT_FTPClient::AskWithText(const char* format, const char* text, int lowest, int highest, int failure) {
  char command[kFtpLineSize];
  if (const int refused = CheckText(format, text, command)) return refused;
  return CheckLastReply(Ask(command), lowest, highest, failure);
}

// Judges the reply that is to be the last one. A preliminary one is not: what it announces must not be
// taken for the answer to the next command.
int CUT_FTPClient::CheckLastReply(int reply, int lowest, int highest, int failure) {
  if (IsPreliminary(reply)) m_nLateReplyWait = kLateReplySeconds;
  return CheckReply(reply, lowest, highest, failure);
}

// What the server says about an operation that we have given up, it says to nobody.
void CUT_FTPClient::ReadLateReplies() {
  if (m_nLateReplyWait < 0) return;
  if (m_nLateReplyWait > 0) SkipToFinalReply(m_nLateReplyWait);
  DrainInput();
  m_nLateReplyWait = -1;
}

// False when none came, each reply within seconds.
bool CUT_FTPClient::SkipToFinalReply(long seconds) {
  const std::uint64_t start = TimeoutClock();
  const std::uint64_t patience = kReplyPatience * LineMilliseconds(m_data.GetReceiveTimeout() / 1000);
  for (int i = 0; i < kMaxPreliminaryReplies && TimeoutClock() - start < patience; ++i) {
    if (WaitForReceive(seconds, 0) != 0) return false;
    const int code = GetResponseCode(*this);
    if (!IsPreliminary(code)) return code != 0;
  }
  return false;
}

int CUT_FTPClient::GetReplyLineCount() {
  return m_replyLines.GetCount();
}

const char* CUT_FTPClient::GetReplyLineText(int index) {
  return m_replyLines.GetString(index);
}

int CUT_FTPClient::GetReplyLine(int index, char* buffer, int size) {
  if (buffer == nullptr) return OnError(kNetNullBuffer);
  const char* const line = GetReplyLineText(index);
  if (line == nullptr) return OnError(kNetBadIndex);
  return OnError(CopyOrTell(line, buffer, size));
}

int CUT_FTPClient::GetLastReply(char* buffer, int size) {
  if (buffer == nullptr) return OnError(kNetNullBuffer);
  return OnError(CopyOrTell(m_szLastReply, buffer, size));
}

const char* CUT_FTPClient::GetLastReplyText() {
  return m_szLastReply;
}
