// What goes wrong on the way, at every step.
#include <algorithm>

#include "mirror/testing/publication_fixture.h"

namespace mirror {

namespace {

using Mishap = FakeStore::Mishap;

class PublicationFaults : public PublicationFixture {
 protected:
  void SetUp() override {
    for (const auto& [path, entry] : LocalFiles()) {
      if (entry.kind == EntryKind::kFile && RankOf(path) == 0) m_tiles.insert(path);
    }
  }

  // An old version on the server, whose manifest is kept, and a new one on this computer.
  void BeginUpdate() {
    FakeStore first(m_clock);
    EXPECT_EQ(Publish(first).result, PublicationResult::kPublished);
    m_old = first.Files();
    std::filesystem::remove_all(m_folder.Path("before"));
    std::filesystem::copy(Manifests(), m_folder.Path("before"));
    MakeMap("2");
  }
  void PutBack(FakeStore& store) {
    store.Files() = m_old;
    std::filesystem::remove_all(Manifests());
    if (!m_old.empty()) std::filesystem::copy(m_folder.Path("before"), Manifests());
  }
  void WatchFor(FakeStore& store, const std::string& newVersion) {
    store.m_onChange = [&store, newVersion, this] {
      const std::string harm = Harm(store.Files(), m_tiles, "version 1", newVersion);
      EXPECT_EQ(harm, "");
    };
  }

  // Of a publication in which all goes well.
  std::size_t CountSteps() {
    FakeStore store(m_clock);
    PutBack(store);
    EXPECT_EQ(Publish(store).result, PublicationResult::kPublished);
    EXPECT_GT(store.m_done.size(), kFiles + kFolders);
    return store.m_done.size();
  }

  // One after the other each step goes wrong; then it is tried again without that.
  void TryEveryStep(const FakeStore::Trouble& trouble, const std::string& newVersion) {
    const std::size_t steps = CountSteps();
    for (std::size_t step = 0; step < steps; ++step) {
      SCOPED_TRACE("step " + std::to_string(step));
      FakeStore store(m_clock, static_cast<unsigned>(step));
      PutBack(store);
      WatchFor(store, newVersion);
      store.m_trouble = [&](std::size_t number, const RemoteJob&) {
        return number == step ? trouble : FakeStore::Trouble();
      };
      const PublicationReport report = Publish(store);
      if (report.result == PublicationResult::kPublished) {
        EXPECT_EQ(store.Files(), LocalFiles());
      }
      if (report.result == PublicationResult::kIncomplete) {
        EXPECT_FALSE(report.problems.empty());
      }
      if (report.result == PublicationResult::kFailed) {
        EXPECT_FALSE(report.reason.empty());
      }
      store.m_trouble = nullptr;
      const std::size_t sentBefore = store.Count("send");
      EXPECT_EQ(Publish(store).result, PublicationResult::kPublished);
      EXPECT_EQ(store.Files(), LocalFiles());
      if (sentBefore >= kFiles) {
        EXPECT_LE(store.Count("send"), kFiles + 4) << "only what was on its way";
      }
    }
  }

  void TryAllTroubles(const std::string& newVersion) {
    for (const Mishap mishap : {Mishap::kBefore, Mishap::kAfter, Mishap::kHalf}) {
      for (const Fault fault : {Fault::kLost, Fault::kRefused, Fault::kFull, Fault::kMissing,
                                Fault::kHopeless, Fault::kTooMany}) {
        SCOPED_TRACE("mishap " + std::to_string(static_cast<int>(mishap)) + " fault " +
                     std::to_string(static_cast<int>(fault)));
        TryEveryStep({.mishap = mishap, .outcome = {fault, "it went wrong"}}, newVersion);
      }
    }
  }

  FakeStore::Tree m_old;
  std::set<std::string> m_tiles;
};

TEST_F(PublicationFaults, LeaveAFirstPublicationToTheNextRun) {
  TryAllTroubles("version 1");
}

TEST_F(PublicationFaults, LeaveTheOldMapInItsPlace) {
  BeginUpdate();
  TryAllTroubles("version 2");
}

TEST_F(PublicationFaults, LeaveTheOldMapInItsPlaceWhereARenameIsAStepOfItsOwn) {
  BeginUpdate();
  for (std::size_t stop = 0; stop < 40; ++stop) {
    SCOPED_TRACE(stop);
    FakeStore store(m_clock, static_cast<unsigned>(stop));
    PutBack(store);
    WatchFor(store, "version 2");
    store.m_trouble = [&](std::size_t number, const RemoteJob&) {
      if (number == stop) m_publication->Stop();
      return FakeStore::Trouble();
    };
    Publish(store);
    const std::size_t inFlight = 4;
    const std::size_t sent = store.Count("send");
    store.m_trouble = nullptr;
    EXPECT_EQ(Publish(store).result, PublicationResult::kPublished);
    EXPECT_EQ(store.Files(), LocalFiles());
    EXPECT_LE(store.Count("send"), kFiles + std::min(sent, inFlight))
        << "nothing twice but what was on its way";
  }
}

// The process is gone: what was under way happened or not, and nobody noted it.
TEST_F(PublicationFaults, LetTheNextRunGoOnAfterAKill) {
  BeginUpdate();
  for (unsigned moment = 0; moment < 60; ++moment) {
    SCOPED_TRACE(moment);
    FakeStore store(m_clock, moment);
    PutBack(store);
    WatchFor(store, "version 2");
    store.m_trouble = [&](std::size_t number, const RemoteJob&) -> FakeStore::Trouble {
      if (number < moment) return {};
      m_publication->Stop();
      const Mishap mishaps[] = {Mishap::kBefore, Mishap::kAfter, Mishap::kHalf};
      return {.mishap = mishaps[number % 3], .outcome = {Fault::kLost, "killed"}};
    };
    const auto report = Publish(store);
    store.m_trouble = nullptr;
    EXPECT_EQ(Publish(store).result, PublicationResult::kPublished);
    EXPECT_EQ(store.Files(), LocalFiles());
    EXPECT_LE(store.Count("send"), kFiles + 4);
  }
}

TEST_F(PublicationFaults, AreNoticedWhereTheServerSaysThatAllIsWell) {
  std::size_t cut = 0;
  m_store.m_trouble = [&](std::size_t, const RemoteJob& job) -> FakeStore::Trouble {
    if (job.path != "18/1/3.png" || ++cut > 1) return {};
    return {.mishap = Mishap::kHalf, .outcome = {}};
  };
  EXPECT_EQ(Publish().result, PublicationResult::kPublished);
  EXPECT_EQ(m_store.Files(), LocalFiles());

  FakeStore always(m_clock);
  std::filesystem::remove_all(Manifests());
  always.m_trouble = [&](std::size_t, const RemoteJob& job) -> FakeStore::Trouble {
    if (job.path != "18/1/3.png") return {};
    return {.mishap = Mishap::kHalf, .outcome = {}};
  };
  const PublicationReport report = Publish(always);
  EXPECT_EQ(report.result, PublicationResult::kIncomplete);
  EXPECT_EQ(report.problems, std::vector<std::string>{"18/1/3.png: it does not arrive whole"});
  EXPECT_EQ(always.Count("rename"), 0U);
  EXPECT_EQ(report.filesSent, kFiles - 1);
}

TEST_F(PublicationFaults, EndItWhenTheServerIsFull) {
  m_store.m_trouble = [&](std::size_t, const RemoteJob& job) -> FakeStore::Trouble {
    if (job.kind != RemoteJob::Kind::kSend) return {};
    return {.mishap = Mishap::kHalf, .outcome = {Fault::kFull, "452 no space"}};
  };
  const PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kFailed);
  EXPECT_EQ(report.reason, "the server has no space left: 452 no space");
  EXPECT_LE(m_store.Count("send"), 4U);
}

TEST_F(PublicationFaults, EndItWhenTheServerWantsNothing) {
  for (int number = 0; number < 100; ++number) Write("18/5/" + std::to_string(number) + ".png", "x");
  m_store.m_trouble = [&](std::size_t, const RemoteJob& job) -> FakeStore::Trouble {
    if (job.kind != RemoteJob::Kind::kSend) return {};
    return {.mishap = Mishap::kBefore, .outcome = {Fault::kRefused, "550 permission denied"}};
  };
  const PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kFailed);
  EXPECT_EQ(report.reason, "550 permission denied");
  EXPECT_LE(m_store.Count("send"), 9U);
}

TEST_F(PublicationFaults, StopWithinAMoment) {
  m_store.m_trouble = [&](std::size_t number, const RemoteJob&) {
    if (number == 3) m_publication->Stop();
    return FakeStore::Trouble();
  };
  EXPECT_EQ(Publish().result, PublicationResult::kStopped);
  EXPECT_EQ(m_store.m_done.size(), 4U);
}

}  // namespace

}  // namespace mirror
