// CUT_FTPClient: files.
#include "net/error_codes.h"
#include "net/file_data_source.h"
#include "net/ftp_client.h"
#include "net/ftp_client_rules.h"
#include "net/source_bytes.h"

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
  return OnError(Store(source, [&] { return ConnectData(command, kNetStorFailed, target); }));
}

int CUT_FTPClient::SendFile(CUT_DataSource& source, const char* remoteName) {
  if (m_bPassive != 0) return SendFilePassive(source, remoteName);
  char command[kFtpLineSize];
  if (const int refused = CheckText(kStorCommand, remoteName, command)) return OnError(refused);
  if (const int failed = OfferDataPort(kNetDataConnectionFailed)) return OnError(failed);
  return OnError(Store(source, [&] { return StartActive(command, kNetStorFailed); }));
}

// start sends the command, upon which the server makes the file, or empties it: by then it is known that
// there is something to send.
int CUT_FTPClient::Store(CUT_DataSource& source, const std::function<int()>& start) {
  if (IsAborted()) return CloseDataAfter(kNetAborted);
  SourceBytes bytes(source, kSourceRead);
  if (!bytes.IsOpen()) return CloseDataAfter(kNetSourceNotOpened);
  if (const int failed = start()) return failed;
  return FinishTransfer(m_data.SendFromStream(bytes));
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
