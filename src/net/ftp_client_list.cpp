// CUT_FTPClient: listings.
#include <ctime>
#include <new>
#include <string_view>

#include "net/error_codes.h"
#include "net/ftp_client.h"
#include "net/ftp_client_rules.h"
#include "net/timeout_clock.h"

namespace {

constexpr std::string_view kTotal = "total";
constexpr char kListCommand[] = "LIST\r\n";
constexpr long kListAcceptSeconds = 15;
// A server could go on for ever.
constexpr std::int32_t kMaxEntries = 1000000;
// Nor is a line in more pieces than these a line.
constexpr int kMaxLinePieces = 10000;
constexpr std::uint64_t kSlowLineMilliseconds = 1000;

int CurrentYear() {
  const std::time_t now = std::time(nullptr);
  return std::localtime(&now)->tm_year + 1900;
}

}  // namespace

int CUT_FTPClient::List() {
  if (m_bPassive != 0) return ListPassive();
  if (const int failed = OfferDataPort(kNetDataPortNotOpened)) return OnError(failed);
  SendCommand(kListCommand);
  if (const int failed = AcceptData(kListAcceptSeconds)) return OnError(failed);
  const int failed = CheckReply(GetResponseCode(*this), 100, 299, kNetDataConnectionFailed);
  if (failed != kNetSuccess) return OnError(CloseDataAfter(failed));
  return OnError(ReceiveListing());
}

int CUT_FTPClient::ListPassive() {
  DataAddress target;
  if (const int failed = FindPassivePort(kNetListFailed, kNetDataPortNotOpened, target))
    return OnError(failed);
  if (const int failed = ConnectData(kListCommand, kNetDataConnectionFailed, target)) return OnError(failed);
  return OnError(ReceiveListing());
}

int CUT_FTPClient::ReceiveListing() {
  ClearDirList();
  if (IsAborted()) return FinishListing(kNetAborted);
  bool isTotalSkipped = false;
  int pieces = 0;  // of the line that has not come to its end
  bool isLast = false;
  while (!isLast) {
    const int count = ReceiveListingLine(isLast);
    if (count < 1) break;
    // Of a line that does not fit, the rest is no line of its own.
    const bool isRest = pieces > 0;
    pieces = m_szLine[count - 1] == '\n' ? 0 : pieces + 1;
    if (pieces > kMaxLinePieces) return FinishListing(kNetListFailed);
    TrimLineEnd(m_szLine);
    if (!isRest) {
      if (!isTotalSkipped &&
          IsSameIgnoringCase(std::string_view(m_szLine).substr(0, kTotal.size()), kTotal)) {
        isTotalSkipped = true;
      } else if (!AddEntry()) {
        return FinishListing(kNetListFailed);
      }
    }
    if (IsAborted()) return FinishListing(kNetAborted);
  }
  // A wait that was cut short ends the lines, too.
  return FinishListing(IsAborted() ? kNetAborted : kNetSuccess);
}

// The next line, or as much of it as fits. When it comes slowly an abort is looked for meanwhile, and
// then only a part of it may be there. isLast is set when nothing can follow.
int CUT_FTPClient::ReceiveListingLine(bool& isLast) {
  int placed = 0;
  do {
    m_data.SetLineDeadline(TimeoutClock() + kSlowLineMilliseconds);
    const int count = m_data.ReceiveLine(m_szLine + placed, sizeof m_szLine - static_cast<size_t>(placed), 0);
    if (count < 1) {
      isLast = true;
      break;
    }
    placed += count;
  } while (m_szLine[placed - 1] != '\n' && placed + 1 < static_cast<int>(sizeof m_szLine) && !IsAborted());
  return placed;
}

// False when there are too many.
bool CUT_FTPClient::AddEntry() {
  if (m_nEntries == kMaxEntries) return false;
  auto* const entry = new (std::nothrow) FtpDirEntry;
  if (entry == nullptr) return false;
  (m_pLastEntry == nullptr ? m_pEntries : m_pLastEntry->next) = entry;
  m_pLastEntry = entry;
  ++m_nEntries;
  if (m_szLine[0] >= '0' && m_szLine[0] <= '9') {
    ParseDosListLine(*entry);
  } else {
    ParseUnixListLine(*entry);
  }
  return true;
}

int CUT_FTPClient::FinishListing(int code) {
  m_data.CloseConnection();
  int reply = GetResponseCode(*this);
  // One that is below 200 is followed by the last one.
  if (reply != 0 && reply < 200) reply = GetResponseCode(*this);
  const int judged = CheckLastReply(reply, 200, 299, kNetListFailed);
  return code != kNetSuccess ? code : judged;
}

void CUT_FTPClient::ParseUnixListLine(FtpDirEntry& entry) {
  ::ParseUnixListLine(m_szLine, CurrentYear(), entry);
}

void CUT_FTPClient::ParseDosListLine(FtpDirEntry& entry) {
  ::ParseDosListLine(m_szLine, entry);
}

int CUT_FTPClient::GetDirEntry(int index, FtpDirEntry& entry) {
  if (index < 0 || index >= m_nEntries) return OnError(kNetBadIndex);
  // Callers ask for one entry after the other: from the beginning, that takes the square of the list.
  if (m_pFound == nullptr || index < m_nFound) {
    m_pFound = m_pEntries;
    m_nFound = 0;
  }
  for (; m_nFound < index && m_pFound != nullptr; ++m_nFound) m_pFound = m_pFound->next;
  if (m_pFound == nullptr) return OnError(kNetBadIndex);
  entry = *m_pFound;
  entry.next = nullptr;
  return OnError(kNetSuccess);
}

void CUT_FTPClient::ClearDirList() {
  while (m_pEntries != nullptr) {
    FtpDirEntry* const next = m_pEntries->next;
    delete m_pEntries;
    m_pEntries = next;
  }
  m_pLastEntry = nullptr;
  m_pFound = nullptr;
  m_nEntries = 0;
}
