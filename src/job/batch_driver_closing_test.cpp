// A host that is closed in the middle of a job.
#include "job/testing/driver_fixture.h"

namespace {

// Runs one job again and again, closed one call later each time. The fake host fails the test when it
// is called after it was closed.
class ClosedDriver : public Driver {
 protected:
  void SetUp() override {
    Driver::SetUp();
    m_settings.webOutput = true;
    m_settings.targetUrl = "host/maps";
    m_settings.googleApiKey = "KEY";
    m_runner.onRun = [this](const ToolRun& run) {
      Make(run);
      if (run.tool == Tool::kTiler) m_files.Put(run.output + "\\googlemaps.html");
    };
  }

  // The host closes itself in the call with this number; never with 0.
  JobResult RunClosedAt(int call) {
    m_files = m_atStart;
    m_events.clear();
    m_host.closed = false;
    m_host.calls = 0;
    m_host.closingCall = call;
    return Start({MakeData("a", "EPSG:3003"), MakeData("b")});
  }

  void ExpectNothingAfterClosingAtAnyCall(JobResult undisturbed) {
    m_atStart = m_files;
    EXPECT_EQ(RunClosedAt(0), undisturbed);
    const int count = m_host.calls;
    ASSERT_GT(count, 0);
    for (int call = 1; call <= count; ++call) {
      EXPECT_EQ(RunClosedAt(call), JobResult::kClosed) << call;
      EXPECT_EQ(m_host.calls, call);
      EXPECT_EQ(m_events.size(), m_host.eventsAtClosing)
          << m_events[m_host.eventsAtClosing] << " after call " << call << " of " << count;
    }
  }

  SearchedFiles m_atStart;
};

TEST_F(ClosedDriver, DoesNothingMoreAtAnyMomentOfAJob) {
  ExpectNothingAfterClosingAtAnyCall(JobResult::kReported);
  EXPECT_GT(m_host.calls, 20) << "a whole job: the last one was closed in its last call";
}

TEST_F(ClosedDriver, DoesNothingMoreWhenItWasAskedAboutOverwriting) {
  Fill("D:\\out\\maps\\tile_0");
  Fill("D:\\out\\maps\\tile_1");
  for (const Answer answer : {Answer::kYes, Answer::kNo, Answer::kCancel}) {
    m_host.answer = answer;
    ExpectNothingAfterClosingAtAnyCall(JobResult::kReported);
  }
}

TEST_F(ClosedDriver, DoesNothingMoreWhenAMessageIsShown) {
  m_files.Refuse("D:\\out\\maps");
  ExpectNothingAfterClosingAtAnyCall(JobResult::kTargetMissing);
  m_environment.refused = "PATH";
  ExpectNothingAfterClosingAtAnyCall(JobResult::kToolsMissing);
  m_files.Remove(kTools);
  ExpectNothingAfterClosingAtAnyCall(JobResult::kToolsMissing);
  m_settings.targetFolder = "d:\\";
  ExpectNothingAfterClosingAtAnyCall(JobResult::kBadSettings);
}

TEST_F(Driver, KnowsNoFolderOnceTheHostIsClosed) {
  GuardedHost host(m_host);
  GuardedFiles files(m_files, host);
  m_files.PutFolder("D:\\out");
  EXPECT_TRUE(files.IsFolder("D:\\out"));
  EXPECT_FALSE(files.IsFolder("D:\\none"));
  m_host.closed = true;
  EXPECT_FALSE(files.IsFolder("D:\\out"));
}

TEST_F(Driver, EndsWithoutAnotherCallWhenTheHostIsClosedWhileAToolRuns) {
  for (const char* tool : {"translate", "warp", "tile"}) {
    Clear();
    m_files.Remove("D:\\in\\a.vrt");
    m_host.closed = false;
    m_runner.onRun = [&](const ToolRun& run) {
      Make(run);
      if (FakeRunner::NameOf(run.tool) == tool) m_host.closed = true;
    };
    EXPECT_EQ(Start({MakeData("a", "EPSG:3003"), MakeData("b")}), JobResult::kClosed) << tool;
    EXPECT_EQ(m_events.back().rfind(tool, 0), 0U) << "nothing is done after it: " << m_events.back();
  }
}

}  // namespace
