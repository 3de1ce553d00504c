#include "publish/remote_survey.h"

#include "net/error_codes.h"
#include "publish/remote_names.h"

namespace {

bool IsTileFolder(const FtpDirEntry& listed) {
  return listed.directory != 0 && std::string(listed.name).find("tile_") != std::string::npos;
}

}  // namespace

int RemoteSurvey::Collect(const std::vector<RemoteRow>& rows, std::vector<CRemoteDataEntry>& entries) {
  m_bLost = false;
  m_bSucceeded = m_server.IsConnected() && m_server.List() == kNetSuccess;
  if (!m_bSucceeded) return 0;
  entries.clear();
  m_host.SetProgressRange(static_cast<int>(rows.size()));
  m_host.SetProgressPosition(0);
  // Once a way back failed, the names of the rows mean nothing where we are.
  for (size_t i = 0; i < rows.size() && m_bSucceeded; ++i) {
    m_host.SetProgressPosition(static_cast<int>(i));
    CRemoteDataEntry entry(rows[i].folder, rows[i].date);
    if (SurveyFolder(entry) != 0) entries.push_back(entry);
  }
  m_host.SetProgressPosition(0);
  if (!m_server.IsConnected()) m_bSucceeded = false;
  return static_cast<int>(entries.size());
}

int RemoteSurvey::SurveyFolder(CRemoteDataEntry& entry) {
  if (!m_server.IsConnected() || m_host.IsAborted() || !IsPlainRemoteName(entry.m_folder)) return 0;
  if (m_server.ChangeFolder(entry.m_folder) != kNetSuccess) return 0;
  if (m_server.List() == kNetSuccess) AddNamesOfFolder(entry);
  GoBack();
  return 1;
}

void RemoteSurvey::AddNamesOfFolder(CRemoteDataEntry& entry) {
  // The listing is fetched again on the way, and what has come since is not looked at.
  const int count = m_server.EntryCount();
  for (int i = 0; i < count && !m_host.IsAborted(); ++i) {
    const FtpDirEntry listed = m_server.Entry(i);
    m_host.PumpMessages();
    if (IsTileFolder(listed)) {
      if (!AddNamesOfTile(listed.name, entry)) return;
    } else {
      entry.AddName(listed.name);
      if (entry.IsComplete()) return;
    }
  }
}

bool RemoteSurvey::AddNamesOfTile(const std::string& name, CRemoteDataEntry& entry) {
  if (!IsPlainRemoteName(name) || m_server.ChangeFolder(name) != kNetSuccess) return true;
  if (m_server.List() == kNetSuccess) {
    const int count = m_server.EntryCount();
    for (int i = 0; i < count; ++i) entry.AddName(m_server.Entry(i).name);
  }
  return GoBack() && m_server.List() == kNetSuccess;
}

bool RemoteSurvey::GoBack() {
  const bool isBack = m_server.GoToParent() == kNetSuccess;
  if (!isBack) {
    m_bSucceeded = false;
    m_bLost = true;
  }
  return isBack;
}
