#include "publish/file_to_send.h"

#include <gtest/gtest.h>

#include <string>

#include "support/temporary_folder.h"

namespace {

class FileToSend : public testing::Test {
 protected:
  int ReadSome() { return m_source.Read(m_buffer, sizeof m_buffer); }

  TemporaryFolder m_folder;
  CFileToSend m_source{m_folder.Path("a").c_str()};
  char m_buffer[3] = {};
};

TEST_F(FileToSend, IsReadToItsEnd) {
  WriteFile(m_folder.Path("a"), "12345");
  ASSERT_EQ(m_source.Open(kSourceRead), 0);
  EXPECT_EQ(ReadSome(), 3);
  EXPECT_EQ(ReadSome(), 2);
  EXPECT_EQ(std::string(m_buffer, 2), "45");
  EXPECT_EQ(ReadSome(), 0);
  EXPECT_FALSE(m_source.HasFailed());
}

TEST_F(FileToSend, TellsWhenItCouldNotBeRead) {
  WriteFile(m_folder.Path("a"), "12345");
  ASSERT_EQ(m_source.Open(kSourceRead), 0);
  EXPECT_EQ(ReadSome(), 3);
  // As a drive that is gone.
  m_source.Close();
  EXPECT_EQ(ReadSome(), -1);
  EXPECT_TRUE(m_source.HasFailed());
}

}  // namespace
