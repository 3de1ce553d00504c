#include "job/tiler_log_file.h"

#include <gtest/gtest.h>

#include <memory>

#include "files/testing/fake_file_system.h"
#include "support/fakes.h"

namespace {

class LogFile : public testing::Test {
 protected:
  Events m_events;
  FakeFileSystem m_files{&m_events};
  FakeEnvironment m_environment;
};

TEST_F(LogFile, IsToldToTheScript) {
  m_environment.values = {{"LOCALAPPDATA", "C:\\me\\Local"}, {"TEMP", "C:\\t"}};
  const TilerLogFile log(m_files, m_environment, "mosaicon", 4711);
  EXPECT_EQ(m_events, (Events{"create C:\\me\\Local\\Mosaicon", "create C:\\me\\Local\\Mosaicon\\Logs"}));
  EXPECT_EQ(m_environment.values["MOSAICON_TILER_LOG"], log.Path());
  const std::string begin = "C:\\me\\Local\\Mosaicon\\Logs\\mosaicon-20";
  const std::string end = "-4711.log";
  const std::string stamp = "yymmdd-hhmmss";
  EXPECT_EQ(log.Path().substr(0, begin.size()), begin);
  EXPECT_EQ(log.Path().substr(begin.size() + stamp.size()), end);
}

TEST_F(LogFile, HasAPlaceWithoutAProfile) {
  m_environment.values = {{"TEMP", "C:\\t"}};
  EXPECT_EQ(TilerLogFile(m_files, m_environment, "x", 1).Path().rfind("C:\\t\\Mosaicon\\Logs\\x-", 0), 0U);
  m_environment.values.clear();
  EXPECT_EQ(TilerLogFile(m_files, m_environment, "x", 1).Path().rfind(".\\Mosaicon\\Logs\\x-", 0), 0U);
}

TEST_F(LogFile, GoesUnlessItIsKept) {
  for (const bool kept : {false, true}) {
    auto log = std::make_unique<TilerLogFile>(m_files, m_environment, "x", 1);
    const std::string path = log->Path();
    m_files.Put(path);
    if (kept) {
      EXPECT_EQ(log->Keep(), path);
    }
    log.reset();
    EXPECT_EQ(m_files.Exists(path), kept);
  }
}

TEST_F(LogFile, IsNothingToKeepWhenNobodyWrote) {
  TilerLogFile log(m_files, m_environment, "x", 1);
  EXPECT_EQ(log.Keep(), "");
}

}  // namespace
