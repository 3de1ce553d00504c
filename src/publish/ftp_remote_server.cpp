#include "publish/ftp_remote_server.h"

#include "net/error_codes.h"
#include "publish/file_to_send.h"
#include "publish/remote_names.h"

bool FtpRemoteServer::IsConnected() {
  return m_client.IsConnected();
}

int FtpRemoteServer::Finish(int code) {
  if (m_client.HasGivenUp()) m_client.CloseConnection();
  return code;
}

int FtpRemoteServer::ChangeFolder(const std::string& name) {
  return Finish(m_client.ChDir(RemotePath(name).c_str()));
}

// Some servers know the way up by its other name only.
int FtpRemoteServer::GoToParent() {
  const int result = Finish(m_client.CdUp());
  return result == kNetDenied ? Finish(m_client.ChDir("..")) : result;
}

int FtpRemoteServer::MakeFolder(const std::string& name) {
  return Finish(m_client.MkDir(RemotePath(name).c_str()));
}

int FtpRemoteServer::RemoveFolder(const std::string& name) {
  return Finish(m_client.RmDir(RemotePath(name).c_str()));
}

int FtpRemoteServer::RemoveFile(const std::string& name) {
  return Finish(m_client.DeleteFile(RemotePath(name).c_str()));
}

int FtpRemoteServer::CurrentFolder(std::string& path) {
  char buffer[kFtpLineSize];
  const int failed = Finish(m_client.GetCurDir(buffer, sizeof buffer));
  path = failed == kNetSuccess ? buffer : "";
  return failed;
}

int FtpRemoteServer::SendFile(const std::string& localPath, const std::string& name) {
  CFileToSend source(localPath.c_str());
  const int sent = m_client.SendFile(source, RemotePath(name).c_str());
  return Finish(sent == kNetSuccess && source.HasFailed() ? m_client.OnError(kNetFailed) : sent);
}

int FtpRemoteServer::List() {
  return Finish(m_client.List());
}

int FtpRemoteServer::EntryCount() {
  return m_client.GetDirEntryCount();
}

FtpDirEntry FtpRemoteServer::Entry(int index) {
  FtpDirEntry entry;
  m_client.GetDirEntry(index, entry);
  return entry;
}

int FtpRemoteServer::ReportError(int code) {
  return m_client.OnError(code);
}
