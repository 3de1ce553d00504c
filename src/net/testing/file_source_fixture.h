// A file and a data source that reads it.
#ifndef MOSAICON_NET_TESTING_FILE_SOURCE_FIXTURE_H_
#define MOSAICON_NET_TESTING_FILE_SOURCE_FIXTURE_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "net/file_data_source.h"
#include "support/temporary_folder.h"

// What ReadLine puts into a buffer of exactly size bytes, so that the sanitizers see one too much.
inline std::string Line(CUT_DataSource& source, size_t size = 8192) {
  std::vector<char> buffer(size, '#');
  const int count = source.ReadLine(buffer.data(), size);
  if (count < 0) return "failed";
  EXPECT_EQ(buffer.at(static_cast<size_t>(count)), '\0');
  return std::string(buffer.data(), static_cast<size_t>(count));
}

inline std::string Bytes(CUT_DataSource& source, size_t count) {
  std::string text(count, '\0');
  const int read = source.Read(text.data(), count);
  return read < 0 ? "failed" : text.substr(0, static_cast<size_t>(read));
}

class FileSourceFixture : public testing::Test {
 protected:
  std::string Make(const std::string& bytes) {
    WriteFile(m_strPath, bytes);
    return m_strPath;
  }

  // The test's source over a file of these bytes, opened for reading. The one before is closed.
  CUT_FileDataSource& Holding(const std::string& bytes, int bufferSize = kLineBufferSize) {
    m_pSource.reset();
    m_pSource = std::make_unique<CUT_FileDataSource>(Make(bytes).c_str(), bufferSize);
    EXPECT_EQ(m_pSource->Open(kSourceRead), 0);
    return *m_pSource;
  }

  TemporaryFolder m_folder;
  std::string m_strPath = m_folder.Path("a");
  std::unique_ptr<CUT_FileDataSource> m_pSource;
};

#endif  // MOSAICON_NET_TESTING_FILE_SOURCE_FIXTURE_H_
