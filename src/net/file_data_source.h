// A data source over a local file. Lines are read through a buffer; everything else goes straight to
// the file. Portable; one thread at a time; fails as the interface says.
#ifndef MOSAICON_NET_FILE_DATA_SOURCE_H_
#define MOSAICON_NET_FILE_DATA_SOURCE_H_

#include <array>
#include <cstdint>
#include <memory>

#include "net/cut_file.h"
#include "net/data_source.h"

// The line buffer of the sources that the client makes for file names.
inline constexpr int kLineBufferSize = 4096;

class CUT_FileDataSource : public CUT_DataSource {
 public:
  // The file is not opened. At most 260 bytes of name count; a null name is an empty one, and cannot be
  // opened. A line is returned whole when it fits, with its line end, into bufferSize - 1 bytes.
  CUT_FileDataSource(const char* name, int bufferSize);
  ~CUT_FileDataSource() override;  // closes the file

  CUT_DataSource* Clone() override;

  // Appending creates the file when it is not there.
  int Open(int mode) override;
  int Close() override;

  // A line ends in CR LF and is returned with both when line and end leave room for the terminator; a
  // longer one comes in pieces of size - 1 bytes, as does one that exceeds the line buffer. A last
  // line without CR LF is returned without.
  int ReadLine(char* buffer, size_t size) override;

  // Adds CR LF unless the last character is one of the two. What is added is not counted.
  int WriteLine(const char* text) override;

  // Bytes that ReadLine had taken from the file without returning them are lost.
  int Read(char* buffer, size_t count) override;
  int Write(const char* buffer, size_t count) override;

  // Relative to what the caller has consumed, not to what ReadLine has buffered.
  long Seek(long offset, int origin) override;

 private:
  int OpenFile(std::uint32_t access, std::uint32_t disposition, int append);
  int FillLineBuffer();
  int TakeBuffered(char* buffer, int count);

  CUT_File m_file;
  std::unique_ptr<char[]> m_pLineBuffer;  // null when there was no memory: ReadLine fails
  std::int32_t m_nLineBufferSize;
  std::int32_t m_nBuffered = 0;  // bytes at the front of the line buffer, read but not yet returned
  std::array<char, 261> m_szName{};
};

#endif  // MOSAICON_NET_FILE_DATA_SOURCE_H_
