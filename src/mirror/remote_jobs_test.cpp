#include "mirror/remote_jobs.h"

#include <gtest/gtest.h>

#include "mirror/testing/fake_store.h"

namespace mirror {

namespace {

using std::chrono::seconds;

class RemoteJobsTest : public testing::Test {
 protected:
  RemoteJobsTest() {
    for (int number = 0; number < 20; ++number) m_store.PutFolder(std::to_string(number));
  }

  void AddListings(int count) {
    for (int number = 0; number < count; ++number) {
      m_jobs.Add({.path = std::to_string(number), .target = "", .source = {}},
                 [this](const FinishedJob& finished) { m_ends.push_back(finished.outcome.fault); });
    }
  }
  FakeStore::Trouble Lost(Fault fault = Fault::kLost) const {
    return {.mishap = FakeStore::Mishap::kBefore, .outcome = {fault, "no line"}};
  }
  seconds Passed() { return std::chrono::duration_cast<seconds>(m_clock.Now() - Clock::Time()); }

  FakeClock m_clock;
  FakeStore m_store{m_clock};
  std::atomic<bool> m_stop = false;
  RemoteJobs m_jobs{m_store, m_clock, m_stop, 4, {}};
  std::vector<Fault> m_ends;
};

TEST_F(RemoteJobsTest, GetDone) {
  AddListings(20);
  EXPECT_EQ(m_jobs.Drain(), Ending::kDone);
  EXPECT_EQ(m_ends, std::vector<Fault>(20, Fault::kNone));
}

TEST_F(RemoteJobsTest, BeginWithOneAndGoOnWithSeveral) {
  m_store.m_mostConnections = 4;
  AddListings(20);
  std::size_t turns = 0;
  m_jobs.SetOnTurn([&] { ++turns; });
  EXPECT_EQ(m_jobs.Drain(), Ending::kDone);
  EXPECT_EQ(m_jobs.Connections(), 4);
  EXPECT_GE(turns, 20U);
}

TEST_F(RemoteJobsTest, MayBringMore) {
  m_jobs.Add({.path = "0", .target = "", .source = {}}, [this](const FinishedJob&) { AddListings(3); });
  EXPECT_EQ(m_jobs.Drain(), Ending::kDone);
  EXPECT_EQ(m_ends.size(), 3U);
}

TEST_F(RemoteJobsTest, AreDoneAgainWhenTheLineBreaks) {
  int breaks = 0;
  m_store.m_trouble = [&](std::size_t number, const RemoteJob&) {
    return number >= 6 && number < 14 && ++breaks > 0 ? Lost() : FakeStore::Trouble();
  };
  AddListings(20);
  EXPECT_EQ(m_jobs.Drain(), Ending::kDone);
  EXPECT_EQ(breaks, 8);
  EXPECT_EQ(m_ends, std::vector<Fault>(20, Fault::kNone));
  EXPECT_GE(Passed(), seconds(1 + 2));
  EXPECT_LE(Passed(), seconds(1 + 2 + 4 + 8));
  EXPECT_EQ(m_jobs.Trouble(), "");
}

TEST_F(RemoteJobsTest, AreGivenUpWhenTheLineStaysBroken) {
  m_store.m_trouble = [&](std::size_t number, const RemoteJob&) {
    return number > 3 ? Lost() : FakeStore::Trouble();
  };
  AddListings(20);
  std::string trouble;
  m_jobs.SetOnTurn([&] { trouble = m_jobs.Trouble(); });
  EXPECT_EQ(m_jobs.Drain(), Ending::kHopeless);
  EXPECT_EQ(m_jobs.Reason(), "no line");
  EXPECT_EQ(trouble, "no line");
  EXPECT_GE(Passed(), seconds(600));
  EXPECT_LE(Passed(), seconds(700));
  EXPECT_LT(m_store.m_done.size(), 150U) << "with pauses that grow";
}

TEST_F(RemoteJobsTest, AreGivenUpOneByOneWhenOthersWork) {
  m_store.m_trouble = [&](std::size_t, const RemoteJob& job) {
    return job.path == "7" ? Lost() : FakeStore::Trouble();
  };
  // While others get done all the time.
  RemoteJobs::OnEnd another = [&](const FinishedJob&) {
    if (m_ends.empty()) m_jobs.Add({.path = "1", .target = "", .source = {}}, another);
  };
  for (int i = 0; i < 4; ++i) m_jobs.Add({.path = "1", .target = "", .source = {}}, another);
  m_jobs.Add({.path = "7", .target = "", .source = {}},
             [this](const FinishedJob& finished) { m_ends.push_back(finished.outcome.fault); });
  EXPECT_EQ(m_jobs.Drain(), Ending::kDone);
  EXPECT_EQ(m_ends, std::vector<Fault>{Fault::kLost});
  EXPECT_GE(m_store.Count("list 7"), 3U);
}

TEST_F(RemoteJobsTest, AreGivenUpWhenNoLineSurvivesThem) {
  m_store.m_trouble = [&](std::size_t, const RemoteJob& job) {
    return job.path == "0" ? Lost() : FakeStore::Trouble();
  };
  AddListings(1);
  EXPECT_EQ(m_jobs.Drain(), Ending::kDone);
  EXPECT_EQ(m_ends, std::vector<Fault>{Fault::kLost});
  EXPECT_LE(Passed(), seconds(60));
  EXPECT_GT(m_store.Count("list "), m_store.Count("list 0")) << "by a look whether there is a line";
}

TEST_F(RemoteJobsTest, MakeDoWithFewerConnections) {
  m_store.m_mostConnections = 2;
  AddListings(20);
  EXPECT_EQ(m_jobs.Drain(), Ending::kDone);
  EXPECT_EQ(m_ends, std::vector<Fault>(20, Fault::kNone));
  EXPECT_EQ(m_jobs.Connections(), 2);
  EXPECT_EQ(m_store.m_connections, 2);
}

TEST_F(RemoteJobsTest, MakeDoWithFewerConnectionsWhereMoreAreARefusedLogin) {
  m_store.m_trouble = [&](std::size_t number, const RemoteJob&) {
    return number == 1 || number == 2 ? Lost(Fault::kHopeless) : FakeStore::Trouble();
  };
  AddListings(20);
  EXPECT_EQ(m_jobs.Drain(), Ending::kDone);
  EXPECT_EQ(m_ends.size(), 20U);
  EXPECT_LT(m_jobs.Connections(), 4);
}

TEST_F(RemoteJobsTest, TryAWrongPasswordOnce) {
  m_store.m_trouble = [&](std::size_t, const RemoteJob&) { return Lost(Fault::kHopeless); };
  AddListings(20);
  EXPECT_EQ(m_jobs.Drain(), Ending::kHopeless);
  EXPECT_EQ(m_store.m_done.size(), 1U);
  EXPECT_EQ(m_ends.size(), 0U);
}

TEST_F(RemoteJobsTest, WaitForTheOnlyConnection) {
  m_store.m_trouble = [&](std::size_t number, const RemoteJob&) {
    return number < 5 ? Lost(Fault::kTooMany) : FakeStore::Trouble();
  };
  AddListings(3);
  EXPECT_EQ(m_jobs.Drain(), Ending::kDone);
  EXPECT_EQ(m_ends.size(), 3U);
  EXPECT_EQ(m_jobs.Connections(), 1);
}

TEST_F(RemoteJobsTest, StopAtOnceEvenInAPause) {
  m_store.m_trouble = [&](std::size_t, const RemoteJob&) { return Lost(); };
  AddListings(3);
  m_jobs.SetOnTurn([&] { m_stop = Passed() >= seconds(40); });
  EXPECT_EQ(m_jobs.Drain(), Ending::kStopped);
  EXPECT_EQ(Passed(), seconds(40));
}

TEST_F(RemoteJobsTest, CanBeGivenUp) {
  m_jobs.Add({.path = "0", .target = "", .source = {}},
             [this](const FinishedJob&) { m_jobs.GiveUp("enough"); });
  AddListings(3);
  EXPECT_EQ(m_jobs.Drain(), Ending::kHopeless);
  EXPECT_EQ(m_jobs.Reason(), "enough");
  EXPECT_EQ(m_ends.size(), 0U);
}

}  // namespace

}  // namespace mirror
