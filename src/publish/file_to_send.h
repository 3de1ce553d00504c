// A local file on its way to the server. Where reading fails, the client takes it for the end of the file;
// this remembers it, so that half a file does not count as uploaded. Portable; one thread at a time.
#ifndef MOSAICON_PUBLISH_FILE_TO_SEND_H_
#define MOSAICON_PUBLISH_FILE_TO_SEND_H_

#include "net/file_data_source.h"

class CFileToSend : public CUT_FileDataSource {
 public:
  explicit CFileToSend(const char* path) : CUT_FileDataSource(path, kLineBufferSize) {}

  int Read(char* buffer, size_t count) override;
  bool HasFailed() const { return m_bFailed; }

 private:
  bool m_bFailed = false;
};

#endif  // MOSAICON_PUBLISH_FILE_TO_SEND_H_
