#include "publish/remote_removal.h"

#include "net/error_codes.h"
#include "publish/remote_names.h"

namespace {

// A server can list folders in folders for ever. No real path has as many components.
constexpr int kDeepest = 128;
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

bool IsSeparator(char c) {
  return c == '/' || c == '\\';
}

bool IsBelow(const std::string& path, const std::string& folder) {
  if (path.size() <= folder.size() || !path.starts_with(folder)) return false;
  return IsSeparator(folder.back()) || IsSeparator(path[folder.size()]);
}

}  // namespace

void RemoteRemoval::RemoveContents(const std::string& name) {
  if (!m_server.IsConnected() || m_host.IsAborted()) return;
  if (m_server.ChangeFolder(name) != kNetSuccess) return;
  RemoveEntries(name);
  if (m_server.GoToParent() != kNetSuccess) m_bStuck = true;
}

std::string RemoteRemoval::PassedOver() const {
  if (m_nPassedOver < 2) return m_strFirstPassedOver;
  return m_strFirstPassedOver + " and " + std::to_string(m_nPassedOver - 1) + " more";
}

void RemoteRemoval::RemoveEntries(const std::string& folder) {
  if (m_server.List() != kNetSuccess || m_server.EntryCount() == 0) return;
  std::set<std::string> refused;
  std::string place;  // as the server calls this folder, once that matters
  while (!m_bStuck && !m_host.IsAborted()) {
    const bool isListed = m_server.List() == kNetSuccess && m_server.EntryCount() > 0;
    m_host.PumpMessages();
    if (!isListed) {
      m_server.ReportError(kNetBadIndex);
      return;
    }
    FtpDirEntry entry;
    if (!TakeFirstEntry(refused, entry) || m_host.IsAborted()) return;
    const int passedOver = m_nPassedOver;
    if (RemoveEntry(folder, entry, place)) continue;
    refused.insert(entry.name);
    // A folder stays with what is passed over in it.
    if (m_nPassedOver == passedOver) PassOver(folder + "\\" + entry.name);
  }
}

bool RemoteRemoval::TakeFirstEntry(const std::set<std::string>& refused, FtpDirEntry& entry) {
  for (int i = 0; i < m_server.EntryCount(); ++i) {
    entry = m_server.Entry(i);
    if (MayBeDeleted(entry) && !refused.contains(entry.name)) return true;
  }
  return false;
}

bool RemoteRemoval::RemoveEntry(const std::string& folder, const FtpDirEntry& entry, std::string& place) {
  const std::string name = entry.name;
  if (entry.directory != 0) return RemoveFolder(name, place);
  m_host.SetStatus("deleting " + folder + "\\" + name);
  return RemoveFileOrLink(name);
}

bool RemoteRemoval::RemoveFileOrLink(const std::string& name) {
  if (IsPlainRemoteName(name) && m_server.RemoveFile(name) == kNetSuccess) return true;
  const std::string link = NameOfLink(name);
  return IsPlainRemoteName(link) && m_server.RemoveFile(link) == kNetSuccess;
}

bool RemoteRemoval::RemoveFolder(const std::string& name, std::string& place) {
  if (m_server.RemoveFile(name) == kNetSuccess) return true;
  EmptyFolder(name, place);
  // After an abort it is not empty, and there may be nobody to tell.
  if (m_host.IsAborted() || m_bStuck) return true;
  return m_server.RemoveFolder(name) == kNetSuccess;
}

// place is where the server stands, asked for when it is empty.
void RemoteRemoval::EmptyFolder(const std::string& name, std::string& place) {
  if (!m_server.IsConnected() || m_host.IsAborted()) return;
  if (m_nDepth == kDeepest) return GiveUp("too many folders in each other: " + name);
  if (place.empty() && (m_server.CurrentFolder(place) != kNetSuccess || place.empty())) return;
  if (m_server.ChangeFolder(name) != kNetSuccess) return;
  std::string now;
  const bool isTold = m_server.CurrentFolder(now) == kNetSuccess;
  // Either this is a link to where it stood, or the server tells the same wherever it stands. Then the way
  // to the place that it tells could lead out of the folder; where it stands now is in there.
  if (isTold && now == place) return;
  if (!isTold || !IsBelow(now, place)) {
    if (m_server.ChangeFolder(place) != kNetSuccess || !IsAt(place)) GiveUp("cannot go back to " + place);
    return;
  }
  ++m_nDepth;
  RemoveEntries(name);
  --m_nDepth;
  if (m_server.GoToParent() != kNetSuccess) {
    m_bStuck = true;
  } else if (!m_bStuck && !m_host.IsAborted() && !IsAt(place)) {
    GiveUp("cannot go back to " + place);
  }
}

bool RemoteRemoval::IsAt(const std::string& place) {
  std::string now;
  return m_server.CurrentFolder(now) == kNetSuccess && now == place;
}

void RemoteRemoval::PassOver(const std::string& path) {
  m_host.SetStatus("cannot delete " + path);
  if (++m_nPassedOver == 1) m_strFirstPassedOver = path;
}

void RemoteRemoval::GiveUp(const std::string& status) {
  m_host.SetStatus(status);
  m_bStuck = true;
}
