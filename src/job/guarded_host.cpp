#include "job/guarded_host.h"

#include "job/partial_files.h"

void GuardedHost::ShowMessage(MessageIcon icon, const std::string& text) {
  if (!IsClosed()) m_host.ShowMessage(icon, text);
}

void GuardedHost::WriteBackTargetUrl(const std::string& url) {
  if (!IsClosed()) m_host.WriteBackTargetUrl(url);
}

void GuardedHost::WriteBackMapTitle(const std::string& title) {
  if (!IsClosed()) m_host.WriteBackMapTitle(title);
}

void GuardedHost::WriteBackTargetFolder(const std::string& folder) {
  if (!IsClosed()) m_host.WriteBackTargetFolder(folder);
}

Answer GuardedHost::AskYesNoCancel(const std::string& text) {
  return IsClosed() ? Answer::kCancel : m_host.AskYesNoCancel(text);
}

void GuardedHost::SetBusy(bool busy) {
  if (!IsClosed()) m_host.SetBusy(busy);
}

void GuardedHost::SetProgressLabel(const std::string& text) {
  if (!IsClosed()) m_host.SetProgressLabel(text);
}

void GuardedHost::SetProgressRange(int lower, int upper) {
  if (!IsClosed()) m_host.SetProgressRange(lower, upper);
}

void GuardedHost::SetProgressPosition(int percent) {
  if (!IsClosed()) m_host.SetProgressPosition(percent);
}

void GuardedHost::NavigatePreview(const std::string& page) {
  if (!IsClosed()) m_host.NavigatePreview(page);
}

void GuardedHost::PumpMessages() {
  if (!IsClosed()) m_host.PumpMessages();
}

void GuardedHost::ShowReport(const JobReport& report) {
  if (!IsClosed()) m_host.ShowReport(report);
}

bool GuardedHost::IsAborted() const {
  return IsClosed() || m_host.IsAborted();
}

void GuardedHost::SetAborted(bool aborted) {
  if (!IsClosed()) m_host.SetAborted(aborted);
}

ToolOutcome GuardedRunner::Run(const ToolRun& run) {
  return m_host.IsClosed() ? ToolOutcome() : m_runner.Run(run);
}

void GuardedFiles::Protect(const std::vector<CTifData>& orthophotos) {
  m_protected.clear();
  for (const CTifData& data : orthophotos) {
    m_protected.insert(Identity(data.m_strFileName));
    m_protected.insert(FullPath(data.m_strFileName));
  }
  m_protected.erase("");
}

bool GuardedFiles::IsProtected(const std::string& path) {
  return m_protected.contains(Identity(path)) || m_protected.contains(FullPath(path));
}

void GuardedFiles::RemovePartial(const std::string& folder) {
  RemovePartialFiles(folder, m_files);
}

std::string GuardedFiles::Identity(const std::string& path) {
  return IsOpen() ? m_files.Identity(path) : std::string();
}

std::optional<std::string> GuardedFiles::Read(const std::string& path, size_t maxBytes) {
  return IsOpen() ? m_files.Read(path, maxBytes) : std::nullopt;
}

bool GuardedFiles::Exists(const std::string& path) {
  return IsOpen() && m_files.Exists(path);
}

bool GuardedFiles::IsFolder(const std::string& path) {
  return IsOpen() && m_files.IsFolder(path);
}

std::optional<std::uint64_t> GuardedFiles::WriteTime(const std::string& path) {
  return IsOpen() ? m_files.WriteTime(path) : std::nullopt;
}

bool GuardedFiles::Find(const std::string& pattern, std::vector<FoundFile>& found) {
  found.clear();
  return IsOpen() && m_files.Find(pattern, found);
}

bool GuardedFiles::CreateFolder(const std::string& path) {
  return IsOpen() && m_files.CreateFolder(path);
}

bool GuardedFiles::Delete(const std::string& path) {
  return MayChange(path) && m_files.Delete(path);
}

bool GuardedFiles::Rename(const std::string& source, const std::string& target) {
  return MayChange(source) && m_files.Rename(source, target);
}

bool GuardedFiles::Copy(const std::string& source, const std::string& target) {
  return MayChange(target) && m_files.Copy(source, target);
}

bool GuardedSteps::RewriteLinks(const std::string& kml, const std::string& baseUrl,
                                const std::string& subFolder) {
  return m_files.MayChange(kml) && m_steps.RewriteLinks(kml, baseUrl, subFolder);
}

bool GuardedSteps::MakePreview(const std::string& orthophoto, const std::string& picture,
                               std::string& reason) {
  return m_files.MayChange(picture) && m_steps.MakePreview(orthophoto, picture, reason);
}

bool GuardedSteps::IsPreview(const std::string& path) {
  return m_files.IsOpen() && m_steps.IsPreview(path);
}

bool GuardedSteps::WriteText(const std::string& path, const std::string& text) {
  return m_files.MayChange(path) && m_steps.WriteText(path, text);
}
