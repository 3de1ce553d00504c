// An open data source, as a stream of bytes: opens it in the given mode and closes it whatever happens.
// Portable; one thread at a time.
#ifndef MOSAICON_NET_SOURCE_BYTES_H_
#define MOSAICON_NET_SOURCE_BYTES_H_

#include "net/byte_stream.h"
#include "net/data_source.h"

class SourceBytes : public ByteStream {
 public:
  SourceBytes(CUT_DataSource& source, int mode) : m_source(source), m_bOpen(source.Open(mode) == 0) {}
  ~SourceBytes() override {
    if (m_bOpen) m_source.Close();
  }
  SourceBytes(const SourceBytes&) = delete;
  SourceBytes& operator=(const SourceBytes&) = delete;

  bool IsOpen() const { return m_bOpen; }

  int Read(char* buffer, size_t count) override { return m_source.Read(buffer, count); }
  int Write(const char* buffer, size_t count) override { return m_source.Write(buffer, count); }
  long GetLength() override { return 0; }

 private:
  CUT_DataSource& m_source;
  bool m_bOpen;
};

#endif  // MOSAICON_NET_SOURCE_BYTES_H_
