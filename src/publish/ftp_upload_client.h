// The FTP client of the upload dialog, which works in the thread of its window: while it waits or sends
// it lets the dialog pump, and it stops when the dialog says so. A server that is silent when the
// operation shall stop gets some time to answer, anew for every command of the way back, and less when
// the dialog does not need the connection any more. Then the wait is given up, and the connection, on
// which an answer may still come, has to be closed.
//
// Operations may run other handlers of the dialog, which must leave the client alone.
#ifndef MOSAICON_PUBLISH_FTP_UPLOAD_CLIENT_H_
#define MOSAICON_PUBLISH_FTP_UPLOAD_CLIENT_H_

#include <cstdint>

#include "net/ftp_client.h"
#include "publish/publish_host.h"

class CFtpUploadClient : public CUT_FTPClient, private WaitListener {
 public:
  // host must outlive it.
  explicit CFtpUploadClient(PublishHost& host);
  ~CFtpUploadClient() override;

  int IsAborted() override;
  int OnError(int code) override;

  // True once a wait was given up; false again after a new connection.
  bool HasGivenUp() const { return m_bGivenUp; }
  void Reset();

 private:
  bool OnWait() override;
  bool IsStopAsked();
  void PumpNowAndThen();

  PublishHost& m_host;
  std::uint64_t m_nLastPump = 0;
  std::uint64_t m_nSilentSince = 0;  // after an abort; 0: not silent
  bool m_bGivenUp = false;
};

#endif  // MOSAICON_PUBLISH_FTP_UPLOAD_CLIENT_H_
