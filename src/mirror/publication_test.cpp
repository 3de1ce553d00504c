#include "mirror/publication.h"

#include "mirror/testing/publication_fixture.h"

namespace mirror {

namespace {

using PublicationTest = PublicationFixture;

TEST_F(PublicationTest, MakesTheFolderWhatTheOtherOneIs) {
  m_store.m_isThere = false;
  const PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kPublished) << report.reason;
  EXPECT_EQ(m_store.Files(), LocalFiles());
  EXPECT_EQ(report.filesSent, kFiles);
  EXPECT_EQ(report.problems, std::vector<std::string>());
  EXPECT_EQ(report.warnings, std::vector<std::string>());
  EXPECT_EQ(m_store.m_connections, 4);
}

TEST_F(PublicationTest, OfAMapThatNobodySeesYetRenamesPagesOnly) {
  Publish();
  EXPECT_EQ(m_store.Count("rename"), 4U);
  EXPECT_EQ(m_store.Count("send 18/1/2.png"), 1U);
  EXPECT_EQ(m_store.Count("send 18/1/2.png.~new"), 0U);
  // The page and the document come last, in any order.
  const std::string last = m_store.m_done.back();
  EXPECT_TRUE(last == "rename leaflet.html.~new" || last == "rename doc.kml.~new") << last;
}

TEST_F(PublicationTest, DoesNothingWhereThereIsNothingToDo) {
  Publish();
  m_store.m_done.clear();
  const PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kPublished);
  EXPECT_EQ(report.filesSent, 0U);
  EXPECT_EQ(m_store.Count("list"), kFolders);
  EXPECT_EQ(m_store.m_done.size(), kFolders) << "and nothing else";
}

TEST_F(PublicationTest, SendsOnlyWhatIsAnotherOne) {
  Publish();
  Write("18/1/3.png", "other");
  Write("18/2/2.png", "18/2/2.png of version 2");  // of the same size
  Write("18/1/2.png", "18/1/2.png of version 1");  // the same, written again
  Write("18/9/9.png", "new");
  m_store.m_done.clear();
  const PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kPublished);
  EXPECT_EQ(report.filesSent, 3U);
  EXPECT_EQ(m_store.Count("send"), 3U);
  EXPECT_EQ(m_store.Files(), LocalFiles());
  m_store.m_done.clear();
  EXPECT_EQ(Publish().filesSent, 0U);
}

TEST_F(PublicationTest, MendsWhatIsCutShortOnTheServer) {
  Publish();
  m_store.Files()["18/1/2.png"].bytes = "18/1";
  m_store.Files().erase("17/0/1.png");
  m_store.m_done.clear();
  EXPECT_EQ(Publish().result, PublicationResult::kPublished);
  EXPECT_EQ(m_store.Count("send"), 2U);
  EXPECT_EQ(m_store.Files(), LocalFiles());
}

TEST_F(PublicationTest, BelievesNothingThatItHasNotSentItself) {
  for (const auto& [path, entry] : LocalFiles()) {
    if (entry.kind == EntryKind::kFile) m_store.Put(path, std::string(entry.bytes.size(), 'x'));
  }
  EXPECT_EQ(Publish().filesSent, kFiles);
  EXPECT_EQ(m_store.Files(), LocalFiles());
}

TEST_F(PublicationTest, NamesWhatIsOnlyOnTheServer) {
  m_store.Put("old/a.png", "a");
  m_store.Put("old/deep/b.png", "b");
  m_store.Put(".htaccess", "AddType");
  m_store.Files()["www"] = {EntryKind::kLink, ""};
  PublicationReport report = Publish();
  EXPECT_EQ(report.plan.extraFiles, (std::vector<std::string>{"www", "old/deep/b.png", "old/a.png"}));
  EXPECT_EQ(report.plan.extraFolders, (std::vector<std::string>{"old/deep", "old"}));
  EXPECT_EQ(m_store.Count("delete"), 0U);

  report = Publish(m_store, {.deleteExtras = true, .patience = {}});
  EXPECT_EQ(report.result, PublicationResult::kPublished);
  EXPECT_EQ(report.filesDeleted, 3U);
  FakeStore::Tree expected = LocalFiles();
  expected[".htaccess"] = {EntryKind::kFile, "AddType"};
  EXPECT_EQ(m_store.Files(), expected);
}

TEST_F(PublicationTest, DeletesNothingThatDiffersInCapitalLettersOnly) {
  m_store.Put("VALLEY.JPG", "another");
  const PublicationReport report = Publish(m_store, {.deleteExtras = true, .patience = {}});
  EXPECT_EQ(report.plan.extraFiles, std::vector<std::string>()) << "it may be the same file";
  EXPECT_TRUE(m_store.Files().contains("VALLEY.JPG"));
}

TEST_F(PublicationTest, ReplacesNothingEarlyWhereAnyPageIsThere) {
  m_store.Put("openlayers.html", "an old page");
  m_store.Put("18/1/2.png", "an old tile");
  m_store.m_onChange = [&] {
    const bool isWaiting = m_store.Count("rename") + m_store.Count("replace") == 0;
    if (isWaiting) {
      EXPECT_EQ(m_store.Files()["18/1/2.png"].bytes, "an old tile");
    }
  };
  EXPECT_EQ(Publish().result, PublicationResult::kPublished);
  EXPECT_EQ(m_store.Count("rename") + m_store.Count("replace"), kFiles);
}

TEST_F(PublicationTest, SendsNothingToAFolderWhoseListingIsNotUnderstood) {
  m_store.m_trouble = [](std::size_t, const RemoteJob& job) -> FakeStore::Trouble {
    if (job.kind != RemoteJob::Kind::kList) return {};
    return {.mishap = FakeStore::Mishap::kBefore, .outcome = {Fault::kIllegible, "it is not understood"}};
  };
  const PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kFailed);
  EXPECT_EQ(report.reason, "it is not understood");
  EXPECT_EQ(m_store.m_done.size(), 1U);
}

TEST_F(PublicationTest, DoesNotSendToALinkWithAStagedName) {
  m_store.Files()["leaflet.html.~new"] = {EntryKind::kLink, "/etc/passwd"};
  const PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kIncomplete);
  EXPECT_EQ(report.problems, std::vector<std::string>{"leaflet.html.~new: on the server it is no file"});
}

TEST_F(PublicationTest, LooksAtWhatItCouldNotRename) {
  Publish();
  MakeMap("2");
  m_store.m_canRename = false;
  m_store.m_trouble = [](std::size_t, const RemoteJob& job) -> FakeStore::Trouble {
    if (job.kind != RemoteJob::Kind::kSend || job.path != "18/1/2.png") return {};
    return {.mishap = FakeStore::Mishap::kHalf, .outcome = {}};
  };
  const PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kIncomplete);
  EXPECT_EQ(report.problems, std::vector<std::string>{"18/1/2.png: it does not arrive whole"});
}

TEST_F(PublicationTest, FollowsNoLink) {
  m_store.Files()["18"] = {EntryKind::kLink, ""};
  PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kIncomplete);
  EXPECT_EQ(report.problems,
            std::vector<std::string>{"18: on the server it is a link, which is not followed"});
  EXPECT_EQ(m_store.Count("send"), 0U);

  m_store.Files().clear();
  m_store.Files()["Valley.jpg"] = {EntryKind::kLink, "/etc/passwd"};
  report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kPublished);
  EXPECT_EQ(m_store.Count("send Valley.jpg.~new"), 1U) << "it would land where the link leads to";
  EXPECT_EQ(m_store.Files(), LocalFiles());
}

TEST_F(PublicationTest, TellsWhatStandsInTheWay) {
  m_store.PutFolder("leaflet.html");
  m_store.Put("17", "a file");
  const PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kIncomplete);
  EXPECT_EQ(report.problems, (std::vector<std::string>{"17: on the server it is no folder",
                                                       "leaflet.html: on the server it is a folder"}));
  EXPECT_EQ(m_store.Count("send"), 0U);
}

TEST_F(PublicationTest, PublishesNoHalfMap) {
  Write("18/.mosaicon-tiles", "journal");
  PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kIncomplete);
  EXPECT_EQ(report.problems, std::vector<std::string>{"18: the map is not finished; make it again"});
  std::filesystem::remove_all(Map());
  report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kIncomplete);
  ASSERT_EQ(report.problems.size(), 1U);
  EXPECT_TRUE(report.problems[0].starts_with(Map().string() + ": ")) << report.problems[0];
  std::filesystem::create_directory(Map());
  report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kFailed);
  EXPECT_EQ(report.reason, "there are no files to publish");
  EXPECT_EQ(m_store.Count("send"), 0U);
}

TEST_F(PublicationTest, LooksWithoutChangingAnything) {
  Publish();
  Write("18/1/3.png", "other");
  m_store.Put("old.png", "a");
  const FakeStore::Tree before = m_store.Files();
  m_store.m_done.clear();
  const PublicationReport report = Publish(m_store, {.deleteExtras = true, .dryRun = true, .patience = {}});
  EXPECT_EQ(report.result, PublicationResult::kPlanned);
  EXPECT_EQ(m_store.Files(), before);
  EXPECT_EQ(m_store.m_done.size(), kFolders);
  ASSERT_EQ(report.plan.files.size(), 1U);
  EXPECT_EQ(report.plan.files[0].file.path, "18/1/3.png");
  EXPECT_EQ(report.plan.BytesToSend(), 5U);
  EXPECT_EQ(report.plan.extraFiles, std::vector<std::string>{"old.png"});

  FakeStore nothing(m_clock);
  nothing.m_isThere = false;
  EXPECT_EQ(Publish(nothing, {.dryRun = true, .patience = {}}).plan.files.size(), kFiles);
  EXPECT_FALSE(nothing.m_isThere);
}

TEST_F(PublicationTest, SendsWhatServersDoNotLetOneRename) {
  Publish();
  MakeMap("2");
  m_store.m_canRename = false;
  EXPECT_EQ(Publish().result, PublicationResult::kPublished);
  EXPECT_EQ(m_store.Files(), LocalFiles()) << "and nothing under a staged name";
}

TEST_F(PublicationTest, SaysWhichFilesItMayReplace) {
  Publish();
  MakeMap("2");
  m_store.m_replacesByRename = false;
  m_store.m_done.clear();
  EXPECT_EQ(Publish().result, PublicationResult::kPublished);
  EXPECT_EQ(m_store.Count("replace"), kFiles);
  EXPECT_EQ(m_store.Count("rename"), 0U);
}

TEST_F(PublicationTest, NoticesAFileThatIsChangedMeanwhile) {
  m_store.m_trouble = [&](std::size_t, const RemoteJob& job) {
    if (job.path == "18/1/2.png" && job.kind == RemoteJob::Kind::kList) return FakeStore::Trouble();
    if (job.path == "18/1/2.png") Write("18/1/2.png", "18/1/2.png of version 7");
    return FakeStore::Trouble();
  };
  const PublicationReport report = Publish();
  EXPECT_EQ(report.result, PublicationResult::kIncomplete);
  EXPECT_EQ(report.problems, std::vector<std::string>{"18/1/2.png: it was changed while it was being sent"});
  EXPECT_EQ(m_store.Count("rename"), 0U) << "no page";
  m_store.m_trouble = nullptr;
  EXPECT_EQ(Publish().result, PublicationResult::kPublished);
  EXPECT_EQ(m_store.Files(), LocalFiles());
}

TEST_F(PublicationTest, AsksAgainWhatAFileHoldsThatWasChangedAMomentBefore) {
  std::filesystem::last_write_time(Map() / "18/1/2.png", std::filesystem::file_time_type::clock::now());
  Publish();
  // Within one tick of a coarse clock, with the same size.
  const auto time = std::filesystem::last_write_time(Map() / "18/1/2.png");
  Write("18/1/2.png", "18/1/2.png of version 2");
  std::filesystem::last_write_time(Map() / "18/1/2.png", time);
  EXPECT_EQ(Publish().filesSent, 1U);
  EXPECT_EQ(m_store.Files(), LocalFiles());
}

TEST_F(PublicationTest, ForgetsFilesThatAreNoMore) {
  Publish();
  Remove("Valley.jpg");
  Publish();
  Manifest manifest;
  manifest.Open(Manifests(), kPlace);
  EXPECT_EQ(manifest.Find("Valley.jpg"), nullptr);
  EXPECT_NE(manifest.Find("18/1/2.png"), nullptr);
}

TEST_F(PublicationTest, TellsHowFarItIs) {
  std::size_t most = 0;
  m_store.m_onChange = [&] {
    const PublicationProgress progress = m_publication->Progress();
    EXPECT_LE(progress.files, progress.filesToSend);
    EXPECT_LE(progress.bytes, progress.bytesToSend);
    EXPECT_EQ(progress.filesToSend, kFiles);
    most = std::max(most, progress.files);
  };
  Publish();
  EXPECT_GT(most, kFiles / 2);
}

}  // namespace

}  // namespace mirror
