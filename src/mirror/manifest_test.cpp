#include "mirror/manifest.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace mirror {

namespace {

const std::string kSum(64, 'a');
const std::string kOther(64, 'b');
constexpr const char* kPlace = "ftp://ann@example.org/maps/valley";
const std::string kFirst = std::string("mosaicon-manifest 1 ") + kPlace + "\n";

SentFile Sent(const std::string& checksum, bool isPlaced) {
  return {.checksum = checksum, .state = {.size = 12, .time = -7}, .isPlaced = isPlaced};
}

TEST(ManifestText, HasTheLastLineOfEach) {
  const SentFiles files =
      ParseManifest(kFirst + "placed " + kSum + " 12 -7 a b/c.png\nstaged " + kSum + " 12 -7 d\nplaced " +
                        kSum + " 1 1 e\ngone e\ngone f\nstaged " + kOther + " 12 -7 a b/c.png\n",
                    kPlace);
  EXPECT_EQ(files, (SentFiles{{"a b/c.png", Sent(kOther, false)}, {"d", Sent(kSum, false)}}));
  EXPECT_EQ(ParseManifest(ManifestOf(files, kPlace), kPlace), files);
}

TEST(ManifestText, IsThatOfOnePlace) {
  const std::string line = "placed " + kSum + " 12 -7 a\n";
  EXPECT_EQ(ParseManifest(kFirst + line, kPlace).size(), 1U);
  for (const std::string first :
       {"mosaicon-manifest 1 ftp://ann@example.org/maps/valley2\n", "mosaicon-manifest 2 x\n", "\n", ""}) {
    EXPECT_EQ(ParseManifest(first + line, kPlace).size(), 0U) << first;
  }
}

TEST(ManifestText, LeavesOutWhatIsNoLine) {
  for (const std::string& line :
       {std::string("placed"), "placed " + kSum, "placed " + kSum + " 12 -7", "placed " + kSum + " 12 -7 ",
        "placed " + kSum.substr(1) + " 12 -7 a", "placed " + kSum + "A 12 -7 a", "placed " + kSum + " x -7 a",
        "placed " + kSum + " -1 -7 a", "placed " + kSum + " 12 7x a", "sent " + kSum + " 12 -7 a",
        "placed " + kSum + " 12 -7 ../a", "placed " + kSum + " 12 -7 /a", "placed " + kSum + " 12 -7 a//b",
        "placed " + kSum + " 12 -7 a/", std::string()}) {
    EXPECT_EQ(ParseManifest(kFirst + line + "\n", kPlace).size(), 0U) << line;
  }
  EXPECT_EQ(ParseManifest(kFirst + "placed " + kSum + " 12 -7 a", kPlace).size(), 0U) << "torn";
}

class ManifestTest : public testing::Test {
 protected:
  std::string Text() const {
    std::string text;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path("all"))) {
      text += ReadFile(entry.path().string());
    }
    return text;
  }
  std::string Open(Manifest& manifest, const std::string& place = kPlace) const {
    return manifest.Open(m_folder.Path("all"), place);
  }

  TemporaryFolder m_folder;
};

TEST_F(ManifestTest, KeepsEachThingAtOnce) {
  Manifest manifest;
  EXPECT_EQ(Open(manifest), "");
  EXPECT_EQ(Text(), kFirst);
  manifest.Note("a b", Sent(kSum, false));
  manifest.Note("a b", Sent(kSum, true));
  manifest.Note("c", Sent(kOther, true));
  manifest.Forget("c");
  manifest.Forget("d");
  EXPECT_EQ(Text(), kFirst + "staged " + kSum + " 12 -7 a b\nplaced " + kSum + " 12 -7 a b\nplaced " +
                        kOther + " 12 -7 c\ngone c\n");
  EXPECT_EQ(*manifest.Find("a b"), Sent(kSum, true));
  EXPECT_EQ(manifest.Find("c"), nullptr);
  EXPECT_EQ(manifest.Failure(), "");
}

TEST_F(ManifestTest, IsFoundAgain) {
  {
    Manifest manifest;
    Open(manifest);
    manifest.Note("a", Sent(kSum, true));
  }
  Manifest manifest;
  EXPECT_EQ(Open(manifest), "");
  EXPECT_EQ(*manifest.Find("a"), Sent(kSum, true));
  Manifest other;
  EXPECT_EQ(Open(other, "ftp://example.org/"), "");
  EXPECT_EQ(other.Find("a"), nullptr);
}

TEST_F(ManifestTest, GoesOnBehindATornLine) {
  {
    Manifest manifest;
    Open(manifest);
    manifest.Note("a", Sent(kSum, true));
  }
  const auto file = std::filesystem::directory_iterator(m_folder.Path("all"))->path().string();
  WriteFile(file, ReadFile(file) + "placed " + kSum + " 12 -7 b");
  {
    Manifest manifest;
    Open(manifest);
    manifest.Note("c", Sent(kSum, true));
  }
  Manifest manifest;
  Open(manifest);
  EXPECT_EQ(manifest.Files().size(), 2U);
  EXPECT_EQ(manifest.Find("b"), nullptr);
}

TEST_F(ManifestTest, LosesWhatDoesNotCountAnyMore) {
  {
    Manifest manifest;
    Open(manifest);
    for (int i = 0; i < 200; ++i) manifest.Note("a", Sent(i % 2 == 0 ? kSum : kOther, true));
  }
  Manifest manifest;
  Open(manifest);
  EXPECT_EQ(Text(), kFirst + "placed " + kOther + " 12 -7 a\n");
}

TEST_F(ManifestTest, KeepsOthersOut) {
  Manifest manifest;
  Open(manifest);
  Manifest other;
  EXPECT_EQ(Open(other), "this folder is being published already");
}

TEST_F(ManifestTest, WorksWithoutAFile) {
  WriteFile(m_folder.Path("all"), "a file where the folder should be");
  Manifest manifest;
  EXPECT_EQ(Open(manifest), "");
  EXPECT_NE(manifest.Failure(), "");
  manifest.Note("a", Sent(kSum, true));
  EXPECT_NE(manifest.Find("a"), nullptr);
}

}  // namespace

}  // namespace mirror
