#include "publish/file_to_send.h"

int CFileToSend::Read(char* buffer, size_t count) {
  const int read = CUT_FileDataSource::Read(buffer, count);
  if (read < 0) m_bFailed = true;
  return read;
}
