// CUT_FTPClient: files.
#include "net/error_codes.h"
#include "net/file_data_source.h"
#include "net/ftp_client.h"
#include "net/ftp_client_rules.h"

namespace {

constexpr long kActiveChunkSeconds = 5;
constexpr long kPassiveChunkSeconds = 0;

}  // namespace

int CUT_FTPClient::SendFilePassiveByName(const char* localFile, const char* remoteName) {
  CUT_FileDataSource source(localFile, kLineBufferSize);
  return SendFilePassive(source, remoteName);
}

int CUT_FTPClient::SendFileByName(const char* localFile, const char* remoteName) {
  CUT_FileDataSource source(localFile, kLineBufferSize);
  return SendFile(source, remoteName);
}

int CUT_FTPClient::ReceiveFilePassiveByName(const char* remoteName, const char* localFile) {
  CUT_FileDataSource source(localFile, kLineBufferSize);
  return ReceiveFilePassive(source, remoteName);
}

int CUT_FTPClient::ReceiveFileByName(const char* remoteName, const char* localFile) {
  CUT_FileDataSource source(localFile, kLineBufferSize);
  return ReceiveFile(source, remoteName);
}

int CUT_FTPClient::ResumeReceiveFileByName(const char* remoteName, const char* localFile) {
  CUT_FileDataSource source(localFile, kLineBufferSize);
  return ResumeReceiveFile(source, remoteName);
}

int CUT_FTPClient::SendFilePassive(CUT_DataSource& source, const char* remoteName) {
  char command[kFtpLineSize];
  if (const int refused = CheckText(kStorCommand, remoteName, command)) return OnError(refused);
  DataAddress target;
  if (const int failed = FindPassivePort(kNetStorFailed, kNetTerminated, target)) return OnError(failed);
  if (IsAborted()) return OnError(CloseDataAfter(kNetAborted));
  if (const int failed = ConnectData(command, kNetStorFailed, target)) return OnError(failed);
  return OnError(FinishTransfer(m_data.SendFromSource(source)));
}

int CUT_FTPClient::SendFile(CUT_DataSource& source, const char* remoteName) {
  if (m_bPassive != 0) return SendFilePassive(source, remoteName);
  char command[kFtpLineSize];
  if (const int refused = CheckText(kStorCommand, remoteName, command)) return OnError(refused);
  if (const int failed = OfferDataPort(kNetDataConnectionFailed)) return OnError(failed);
  if (IsAborted()) return OnError(CloseDataAfter(kNetAborted));
  if (const int failed = StartActive(command, kNetStorFailed)) return OnError(failed);
  return OnError(FinishTransfer(m_data.SendFromSource(source)));
}

int CUT_FTPClient::ReceiveFilePassive(CUT_DataSource& source, const char* remoteName) {
  return OnError(ReceivePassive(source, remoteName, false));
}

int CUT_FTPClient::ResumeReceiveFilePassive(CUT_DataSource& source, const char* remoteName) {
  return OnError(ReceivePassive(source, remoteName, true));
}

int CUT_FTPClient::ReceiveFile(CUT_DataSource& source, const char* remoteName) {
  if (m_bPassive != 0) return ReceiveFilePassive(source, remoteName);
  return OnError(ReceiveActive(source, remoteName, false));
}

int CUT_FTPClient::ResumeReceiveFile(CUT_DataSource& source, const char* remoteName) {
  if (m_bPassive != 0) return ResumeReceiveFilePassive(source, remoteName);
  return OnError(ReceiveActive(source, remoteName, true));
}

int CUT_FTPClient::ReceivePassive(CUT_DataSource& source, const char* remoteName, bool resumes) {
  char command[kFtpLineSize];
  if (const int refused = CheckText(kRetrCommand, remoteName, command)) return refused;
  DataAddress target;
  if (const int failed = FindPassivePort(kNetRetrFailed, kNetTerminated, target)) return failed;
  if (IsAborted()) return CloseDataAfter(kNetAborted);
  int mode = kSourceWrite;
  if (resumes) {
    if (const int failed = AskToRestart(source, mode)) return CloseDataAfter(failed);
  }
  if (const int failed = ConnectData(command, kNetRetrFailed, target)) return failed;
  return FinishTransfer(m_data.ReceiveToSource(source, mode, kPassiveChunkSeconds, 0));
}

int CUT_FTPClient::ReceiveActive(CUT_DataSource& source, const char* remoteName, bool resumes) {
  char command[kFtpLineSize];
  if (const int refused = CheckText(kRetrCommand, remoteName, command)) return refused;
  if (const int failed = OfferDataPort(kNetDataConnectionFailed)) return failed;
  int mode = kSourceWrite;
  if (resumes) {
    if (const int failed = AskToRestart(source, mode)) return CloseDataAfter(failed);
  }
  if (const int failed = StartActive(command, kNetRetrFailed)) return failed;
  return FinishTransfer(m_data.ReceiveToSource(source, mode, kActiveChunkSeconds, 0));
}

// Tells the server where to go on. mode becomes that in which the source is to be opened.
int CUT_FTPClient::AskToRestart(CUT_DataSource& source, int& mode) {
  mode = kSourceWrite;
  if (source.Open(kSourceRead) != 0) return kNetSuccess;
  const long size = source.Seek(0, kSeekEnd);
  source.Close();
  // Too large for a position. Neither a wrong one nor a fresh start may destroy what is there.
  if (size < 0) return kNetSourceNotOpened;
  char command[kFtpLineSize];
  FormatCommand(command, "REST %d\r\n", static_cast<int>(size));
  const int failed = CheckLastReply(Ask(command), 350, 350, kNetRestRefused);
  if (failed == kNetSuccess) mode = kSourceAppend;
  return failed;
}
