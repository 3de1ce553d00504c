#include "publish/remote_removal.h"

#include "net/error_codes.h"
#include "publish/remote_names.h"

namespace {

// A server can list folders in folders for ever. No real path has as many components.
constexpr int kDeepest = 128;
constexpr int kMostFailures = 2;
constexpr char kLinkArrow[] = " -> ";

// Unix servers list a link with what it points to.
std::string NameOfLink(const std::string& listed) {
  const size_t arrow = listed.find(kLinkArrow);
  return arrow == std::string::npos ? "" : listed.substr(0, arrow);
}

bool MayBeDeleted(const FtpDirEntry& entry) {
  const std::string name = entry.name;
  return IsPlainRemoteName(name) || (entry.directory == 0 && IsPlainRemoteName(NameOfLink(name)));
}

}  // namespace

void RemoteRemoval::RemoveContents(const std::string& name) {
  if (!m_server.IsConnected() || m_host.IsAborted()) return;
  if (m_nDepth == kDeepest) return GiveUp("too many folders in each other: " + name);
  if (m_server.ChangeFolder(name) != kNetSuccess) return;
  ++m_nDepth;
  RemoveEntries(name);
  --m_nDepth;
  if (m_server.GoToParent() != kNetSuccess) m_bStuck = true;
}

void RemoteRemoval::RemoveEntries(const std::string& folder) {
  if (m_server.List() != kNetSuccess || m_server.EntryCount() == 0) return;
  int failures = 0;
  int count = 0;
  do {
    if (m_host.IsAborted()) return;
    const int listed = m_server.List();
    count = listed == kNetSuccess ? m_server.EntryCount() : 0;
    m_host.PumpMessages();
    FtpDirEntry entry;
    if (count == 0) {
      m_server.ReportError(kNetBadIndex);
    } else if (!TakeFirstEntry(entry) || m_host.IsAborted()) {
      return;
    } else if (RemoveEntry(folder, entry)) {
      failures = 0;
    } else if (++failures == kMostFailures) {
      GiveUp("cannot delete " + folder + "\\" + entry.name);
    }
  } while (count > 0 && !m_bStuck);
}

bool RemoteRemoval::TakeFirstEntry(FtpDirEntry& entry) {
  for (int i = 0; i < m_server.EntryCount(); ++i) {
    entry = m_server.Entry(i);
    if (MayBeDeleted(entry)) return true;
  }
  return false;
}

bool RemoteRemoval::RemoveEntry(const std::string& folder, const FtpDirEntry& entry) {
  const std::string name = entry.name;
  if (entry.directory == 0) {
    m_host.SetStatus("deleting " + folder + "\\" + name);
    return RemoveFileOrLink(name);
  }
  RemoveContents(name);
  // After an abort it is not empty, and there may be nobody to tell.
  if (m_host.IsAborted() || m_bStuck) return true;
  return m_server.RemoveFolder(name) == kNetSuccess;
}

bool RemoteRemoval::RemoveFileOrLink(const std::string& name) {
  if (IsPlainRemoteName(name) && m_server.RemoveFile(name) == kNetSuccess) return true;
  const std::string link = NameOfLink(name);
  return IsPlainRemoteName(link) && m_server.RemoveFile(link) == kNetSuccess;
}

void RemoteRemoval::GiveUp(const std::string& status) {
  m_host.SetStatus(status);
  m_bStuck = true;
}
