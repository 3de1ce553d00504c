#include "tiler/png_tile.h"

#include <gdal.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tiler/decoded_tile.h"

namespace tiler {
namespace {

// What the header says of a pixel, by the kind of colours that it names.
int ChannelsOf(std::string_view file) {
  constexpr int kChannels[] = {1, 0, 3, 0, 2, 0, 4};
  constexpr std::size_t kPlace = 25;
  return kChannels[static_cast<std::size_t>(file[kPlace])];
}

Tile Noise(unsigned seed, bool grey, bool opaque) {
  std::mt19937 random(seed);
  const auto any = [&random] { return static_cast<std::uint8_t>(random()); };
  Tile tile(kTilePixels);
  for (Pixel& pixel : tile) {
    pixel = {any(), any(), any(), any()};
    if (grey) pixel.green = pixel.blue = pixel.red;
    if (opaque) pixel.alpha = 255;
  }
  return tile;
}

class Png : public testing::Test {
 protected:
  void SetUp() override { GDALAllRegister(); }
};

TEST_F(Png, LosesNothing) {
  for (const bool grey : {false, true}) {
    PngEncoder encoder(grey ? 1 : 3);
    for (unsigned seed = 0; seed < 6; ++seed) {
      const bool opaque = seed % 2 == 0;
      const Tile tile = Noise(seed, grey, opaque);
      const std::string file(encoder.Encode(tile));
      EXPECT_EQ(DecodedTile(file), tile);
      EXPECT_EQ(ChannelsOf(file), (grey ? 1 : 3) + (opaque ? 0 : 1));
    }
  }
}

TEST_F(Png, KeepsASingleTransparentPixel) {
  PngEncoder encoder(3);
  for (const std::size_t place : {std::size_t{0}, kTilePixels - 1}) {
    Tile tile(kTilePixels, Pixel{1, 2, 3, 255});
    tile[place].alpha = 254;
    EXPECT_EQ(DecodedTile(std::string(encoder.Encode(tile))), tile);
  }
}

TEST_F(Png, MakesLittleOfNothing) {
  PngEncoder encoder(3);
  const Tile empty(kTilePixels);
  EXPECT_LT(encoder.Encode(empty).size(), 2000U);
  EXPECT_EQ(DecodedTile(std::string(encoder.Encode(empty))), empty);
}

TEST_F(Png, RemembersNothingOfTheTileBefore) {
  PngEncoder used(3);
  const Tile tile = Noise(9, false, false);
  used.Encode(Noise(8, false, true));
  EXPECT_EQ(used.Encode(tile), PngEncoder(3).Encode(tile));
}

TEST_F(Png, IsReadOnlyWhenItIsAWholeTile) {
  PngEncoder encoder(3);
  const std::string file(encoder.Encode(Noise(3, false, false)));
  CPLPushErrorHandler(CPLQuietErrorHandler);
  EXPECT_EQ(DecodedTile(""), std::nullopt);
  EXPECT_EQ(DecodedTile("no image"), std::nullopt);
  EXPECT_EQ(DecodedTile(file.substr(0, file.size() / 2)), std::nullopt);
  std::string broken = file;
  broken[file.size() / 2] ^= 1;
  EXPECT_EQ(DecodedTile(broken), std::nullopt);
  CPLPopErrorHandler();
}

}  // namespace
}  // namespace tiler
