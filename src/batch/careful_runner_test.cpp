#include "batch/careful_runner.h"

#include <gtest/gtest.h>

#include "files/testing/fake_file_system.h"
#include "support/fakes.h"

namespace {

class Careful : public testing::Test {
 protected:
  ToolOutcome Run() { return m_runner.Run({Tool::kTiler, "p", " x", "D:\\a.tif", "D:\\a2.vrt", "D:\\out"}); }

  Events m_events;
  FakeHost m_host{m_events};
  FakeFileSystem m_files{&m_events};
  FakeRunner m_tools{m_events};
  CarefulRunner m_runner{m_tools, m_host, m_files};
};

TEST_F(Careful, RunsWhatCanSucceed) {
  m_files.Put("D:\\a2.vrt");
  const ToolOutcome outcome = Run();
  EXPECT_EQ(m_events, Events{"tile p x"});
  EXPECT_EQ(outcome.exitCode, 0U);
  EXPECT_EQ(outcome.lastWords, "RESULT OK");
}

TEST_F(Careful, RunsNothingAfterAnAbort) {
  m_files.Put("D:\\a2.vrt");
  m_host.aborted = true;
  EXPECT_EQ(Run().exitCode, std::nullopt);
  EXPECT_TRUE(m_events.empty());
}

TEST_F(Careful, RunsNothingWithoutItsInput) {
  EXPECT_EQ(Run().exitCode, std::nullopt);
  EXPECT_TRUE(m_events.empty());
}

}  // namespace
