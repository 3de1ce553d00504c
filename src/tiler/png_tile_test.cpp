#include "tiler/png_tile.h"

#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tiler {
namespace {

constexpr const char* kName = "/vsimem/png_tile_test.png";

// A tile as a reader of PNG finds it, and how many bands it has.
struct Decoded {
  Tile tile;
  int bands = 0;
};

Decoded Decode(std::string_view file) {
  GDALAllRegister();
  std::string copy(file);
  VSIFCloseL(VSIFileFromMemBuffer(kName, reinterpret_cast<GByte*>(copy.data()), copy.size(), FALSE));
  const GDALDatasetUniquePtr dataset(GDALDataset::Open(kName));
  Decoded decoded = {Tile(kTilePixels), dataset ? dataset->GetRasterCount() : 0};
  const int colours = decoded.bands < 3 ? 1 : 3;
  for (int band = 1; band <= decoded.bands; ++band) {
    std::vector<std::uint8_t> samples(kTilePixels);
    EXPECT_EQ(dataset->GetRasterBand(band)->RasterIO(GF_Read, 0, 0, kTileSize, kTileSize, samples.data(),
                                                     kTileSize, kTileSize, GDT_Byte, 0, 0, nullptr),
              CE_None);
    for (std::size_t i = 0; i < kTilePixels; ++i) {
      Pixel& pixel = decoded.tile[i];
      if (band > colours) {
        pixel.alpha = samples[i];
      } else {
        if (band == 1) pixel = {samples[i], samples[i], samples[i], 255};
        if (band == 2) pixel.green = samples[i];
        if (band == 3) pixel.blue = samples[i];
      }
    }
  }
  VSIUnlink(kName);
  return decoded;
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

TEST(PngEncoder, LosesNothing) {
  for (const bool grey : {false, true}) {
    PngEncoder encoder(grey ? 1 : 3);
    for (unsigned seed = 0; seed < 6; ++seed) {
      const bool opaque = seed % 2 == 0;
      const Tile tile = Noise(seed, grey, opaque);
      const Decoded decoded = Decode(encoder.Encode(tile));
      EXPECT_EQ(decoded.tile, tile);
      EXPECT_EQ(decoded.bands, (grey ? 1 : 3) + (opaque ? 0 : 1));
    }
  }
}

TEST(PngEncoder, KeepsASingleTransparentPixel) {
  PngEncoder encoder(3);
  for (const std::size_t place : {std::size_t{0}, kTilePixels - 1}) {
    Tile tile(kTilePixels, Pixel{1, 2, 3, 255});
    tile[place].alpha = 254;
    EXPECT_EQ(Decode(encoder.Encode(tile)).tile, tile);
  }
}

TEST(PngEncoder, MakesLittleOfNothing) {
  PngEncoder encoder(3);
  const Tile empty(kTilePixels);
  EXPECT_LT(encoder.Encode(empty).size(), 2000U);
  EXPECT_EQ(Decode(encoder.Encode(empty)).tile, empty);
}

TEST(PngEncoder, RemembersNothingOfTheTileBefore) {
  PngEncoder used(3);
  const Tile tile = Noise(9, false, false);
  used.Encode(Noise(8, false, true));
  EXPECT_EQ(used.Encode(tile), PngEncoder(3).Encode(tile));
}

}  // namespace
}  // namespace tiler
