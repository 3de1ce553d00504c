#include "job/tiler_log.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "support/temporary_folder.h"

namespace {

TEST(ResultLine, IsTheLastOne) {
  EXPECT_EQ(FindResultLine("start\nRESULT OK\n"), "RESULT OK");
  EXPECT_EQ(FindResultLine("RESULT OK\r\n"), "RESULT OK");
  EXPECT_EQ(FindResultLine("RESULT FAILED first\nRESULT OK"), "RESULT OK");
  EXPECT_EQ(FindResultLine("RESULT OK\nwarning\nRESULT FAILED the image has 6 bands\r\n"),
            "RESULT FAILED the image has 6 bands");
}

TEST(ResultLine, IsNoOtherLine) {
  for (const char* text : {"", "start\nwarning\n", "RESULT", " RESULT OK\n", "RESULT OK and more\n",
                           "RESULT FAILED", "RESULT FAILEDx"}) {
    EXPECT_EQ(FindResultLine(text), "") << text;
  }
}

class Log : public testing::Test {
 protected:
  void Add(const std::string& text) const {
    const std::string before = FileExists(m_strPath) ? ReadFile(m_strPath) : "";
    WriteFile(m_strPath, before + text);
  }

  TemporaryFolder m_folder;
  const std::string m_strPath = m_folder.Path("tiler.log");
};

TEST_F(Log, TellsOnlyWhatTheRunAdded) {
  Add("RESULT OK\n");
  const TilerLog log(m_strPath);
  EXPECT_EQ(log.ReadResultLine(), "");
  Add("START\nkilled\n");
  EXPECT_EQ(log.ReadResultLine(), "");
  Add("RESULT FAILED no memory\n");
  EXPECT_EQ(log.ReadResultLine(), "RESULT FAILED no memory");
}

TEST_F(Log, NeedNotBeThere) {
  const TilerLog log(m_strPath);
  EXPECT_EQ(log.ReadResultLine(), "");
  Add("RESULT OK\n");
  EXPECT_EQ(log.ReadResultLine(), "RESULT OK");
  EXPECT_EQ(TilerLog("").ReadResultLine(), "");
}

TEST_F(Log, MayBeGoneAfterTheRun) {
  Add("RESULT OK\n");
  const TilerLog log(m_strPath);
  ASSERT_EQ(std::remove(m_strPath.c_str()), 0);
  EXPECT_EQ(log.ReadResultLine(), "");
}

// The script writes UTF-8.
TEST_F(Log, IsReadAsTextOfThisProgram) {
  const TilerLog log(m_strPath);
  Add("RESULT FAILED no \xC3\xBC here\n");
#ifdef _WIN32
  EXPECT_EQ(log.ReadResultLine(), "RESULT FAILED no \xFC here");
#else
  EXPECT_EQ(log.ReadResultLine(), "RESULT FAILED no \xC3\xBC here");
#endif
}

}  // namespace
