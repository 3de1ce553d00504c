#include "tiler/tile_encoder.h"

#include <gdal.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tiler/decoded_tile.h"

namespace tiler {
namespace {

// Soft slopes, as photographs have them. alpha: of the pixels of the left half.
Tile Slopes(std::uint8_t alpha, bool grey) {
  Tile tile(kTilePixels);
  for (int i = 0; i < static_cast<int>(kTilePixels); ++i) {
    const int x = i % kTileSize;
    const int y = i / kTileSize;
    const auto value = [](int number) { return static_cast<std::uint8_t>(60 + number % 512 / 4); };
    Pixel& pixel = tile[static_cast<std::size_t>(i)];
    pixel = {value(x), value(x + y), value(2 * y), x < kTileSize / 2 ? alpha : std::uint8_t{255}};
    if (grey) pixel.green = pixel.blue = pixel.red;
  }
  return tile;
}

// The mean difference of a colour where something is to be seen.
double DifferenceOf(const Tile& one, const Tile& other) {
  double sum = 0;
  for (std::size_t i = 0; i < kTilePixels; ++i) {
    if (one[i].alpha == 0) continue;
    sum += std::abs(one[i].red - other[i].red) + std::abs(one[i].green - other[i].green) +
           std::abs(one[i].blue - other[i].blue);
  }
  return sum / 3 / static_cast<double>(kTilePixels);
}

class Encoder : public testing::Test {
 protected:
  void SetUp() override { GDALAllRegister(); }
};

TEST_F(Encoder, MakesJpegOfOpaqueTilesAlone) {
  for (const bool grey : {false, true}) {
    TileEncoder encoder(TileFormat::kAuto, grey ? 1 : 3);
    const EncodedTile opaque = encoder.Encode(Slopes(255, grey));
    EXPECT_EQ(opaque.kind, TileKind::kJpeg);
    EXPECT_TRUE(opaque.content.starts_with("\xFF\xD8\xFF"));
    const auto read = DecodedTile(std::string(opaque.content));
    ASSERT_TRUE(read);
    EXPECT_TRUE(IsOpaque(*read));
    EXPECT_LT(DifferenceOf(Slopes(255, grey), *read), 2);
    const EncodedTile other = encoder.Encode(Slopes(254, grey));
    EXPECT_EQ(other.kind, TileKind::kPng);
    EXPECT_EQ(DecodedTile(std::string(other.content)), Slopes(254, grey));
  }
}

TEST_F(Encoder, KeepsTransparencyInWebp) {
  for (const bool grey : {false, true}) {
    TileEncoder encoder(TileFormat::kWebp, grey ? 1 : 3);
    for (const std::uint8_t alpha : {0, 100, 255}) {
      const Tile tile = Slopes(alpha, grey);
      const EncodedTile encoded = encoder.Encode(tile);
      EXPECT_EQ(encoded.kind, TileKind::kWebp);
      EXPECT_EQ(encoded.content.substr(8, 4), "WEBP");
      const auto read = DecodedTile(std::string(encoded.content));
      ASSERT_TRUE(read);
      EXPECT_LT(DifferenceOf(tile, *read), 2);
      for (std::size_t i = 0; i < kTilePixels; ++i) ASSERT_EQ((*read)[i].alpha, tile[i].alpha) << i;
    }
  }
}

TEST_F(Encoder, RemembersNothingOfTheTileBefore) {
  for (const TileFormat format : {TileFormat::kPng, TileFormat::kAuto, TileFormat::kWebp}) {
    TileEncoder used(format, 3);
    used.Encode(Slopes(255, true));
    TileEncoder fresh(format, 3);
    EXPECT_EQ(used.Encode(Slopes(255, false)).content, fresh.Encode(Slopes(255, false)).content);
  }
}

}  // namespace
}  // namespace tiler
