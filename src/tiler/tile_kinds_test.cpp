#include "tiler/tile_kinds.h"

#include <gtest/gtest.h>

namespace tiler {
namespace {

using Runs = std::vector<std::int64_t>;

// Level 14: columns 8600 and 8601 of row 9009; level 15: columns 17201 to 17203 of rows 18018 and 18019.
const Pyramid& Sample() {
  static const Pyramid pyramid({512, 300, 1000000.5, 2000000.25, 4.7, -4.7});
  return pyramid;
}

TEST(TileKinds, HasNothingToTellOfOneKind) {
  for (const auto& [format, kind, text] :
       {std::tuple(TileFormat::kPng, TileKind::kPng, "{\"kinds\": [\"png\"], \"runs\": {}}"),
        std::tuple(TileFormat::kWebp, TileKind::kWebp, "{\"kinds\": [\"webp\"], \"runs\": {}}"),
        std::tuple(TileFormat::kAuto, TileKind::kJpeg, "{\"kinds\": [\"jpg\"], \"runs\": {}}")}) {
    TileKinds kinds(Sample(), format);
    kinds.Set({14, 8601, 9009}, kind);
    EXPECT_EQ(kinds.Text(), text);
    EXPECT_EQ(kinds.Of({15, 17203, 18019}), kind);
    EXPECT_EQ(kinds.AreExact(), format == TileFormat::kPng);
  }
}

TEST(TileKinds, CountsFromTheSouthWest) {
  TileKinds kinds(Sample(), TileFormat::kAuto);
  kinds.Set({15, 17203, 18018}, TileKind::kPng);
  kinds.Set({15, 17201, 18019}, TileKind::kPng);
  kinds.Set({14, 8600, 9009}, TileKind::kPng);
  EXPECT_EQ(kinds.RunsOf(15), (Runs{2, 2}));
  EXPECT_EQ(kinds.RunsOf(14), (Runs{0, 1}));
  EXPECT_EQ(kinds.Text(), "{\"kinds\": [\"jpg\", \"png\"], \"runs\": {\"14\": [0, 1], \"15\": [2, 2]}}");
  EXPECT_EQ(kinds.Of({15, 17201, 18019}), TileKind::kPng);
  EXPECT_EQ(kinds.Of({15, 17202, 18019}), TileKind::kJpeg);
}

TEST(TileKinds, EndsWithARunOfTheOtherKind) {
  TileKinds kinds(Sample(), TileFormat::kAuto);
  kinds.Set({15, 17203, 18019}, TileKind::kPng);
  EXPECT_EQ(kinds.RunsOf(15), (Runs{5, 1}));
  EXPECT_EQ(kinds.RunsOf(14), Runs());
}

TEST(TileKinds, FindsOutWhatIsUsual) {
  TileKinds kinds(Sample(), TileFormat::kAuto);
  for (int column = 17201; column <= 17203; ++column) {
    kinds.Set({15, column, 18018}, TileKind::kPng);
    kinds.Set({15, column, 18019}, TileKind::kPng);
  }
  EXPECT_EQ(kinds.Usual(), TileKind::kPng);
  EXPECT_EQ(kinds.Text(), "{\"kinds\": [\"png\", \"jpg\"], \"runs\": {\"14\": [0, 2]}}");
  kinds.Set({14, 8600, 9009}, TileKind::kPng);
  kinds.Set({14, 8601, 9009}, TileKind::kPng);
  EXPECT_EQ(kinds.Text(), "{\"kinds\": [\"png\"], \"runs\": {}}");
  EXPECT_FALSE(kinds.AreExact()) << "the format is another";
}

TEST(TileKinds, TakesTheLastWord) {
  TileKinds kinds(Sample(), TileFormat::kAuto);
  for (int i = 0; i < 3; ++i) kinds.Set({14, 8600, 9009}, TileKind::kPng);
  kinds.Set({14, 8600, 9009}, TileKind::kJpeg);
  EXPECT_EQ(kinds.Other(), std::vector<TileKind>());
}

}  // namespace
}  // namespace tiler
