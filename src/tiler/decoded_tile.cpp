#include "tiler/decoded_tile.h"

#include <cpl_vsi.h>
#include <gdal_priv.h>

#include <array>
#include <atomic>

namespace tiler {

namespace {

// Content as a file in GDAL's memory.
class MemoryFile {
 public:
  explicit MemoryFile(const std::string& content) {
    static std::atomic<int> count = 0;
    m_name = "/vsimem/mosaicon_tile_" + std::to_string(++count);
    // It is read only.
    auto* bytes = reinterpret_cast<GByte*>(const_cast<char*>(content.data()));
    VSIFCloseL(VSIFileFromMemBuffer(m_name.c_str(), bytes, content.size(), FALSE));
  }
  ~MemoryFile() { VSIUnlink(m_name.c_str()); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  const std::string& Name() const { return m_name; }

 private:
  std::string m_name;
};

}  // namespace

std::optional<Tile> DecodedTile(const std::string& content) {
  const MemoryFile file(content);
  const char* const drivers[] = {"PNG", "JPEG", "WEBP", nullptr};
  const GDALDatasetUniquePtr dataset(
      GDALDataset::Open(file.Name().c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, drivers));
  if (!dataset || dataset->GetRasterXSize() != kTileSize || dataset->GetRasterYSize() != kTileSize) {
    return std::nullopt;
  }
  // Which band is in which channel, by the number of bands.
  using Bands = std::array<int, 4>;
  constexpr std::array<Bands, 5> kChannels = {
      Bands{}, {1, 1, 1, 0}, {1, 1, 1, 2}, {1, 2, 3, 0}, {1, 2, 3, 4}};
  const int bands = dataset->GetRasterCount();
  if (bands < 1 || bands > 4) return std::nullopt;
  Tile tile(kTilePixels, Pixel{0, 0, 0, 255});
  std::uint8_t* const channels[] = {&tile[0].red, &tile[0].green, &tile[0].blue, &tile[0].alpha};
  for (std::size_t i = 0; i < std::size(channels); ++i) {
    const int band = kChannels[static_cast<std::size_t>(bands)][i];
    constexpr auto kPixelBytes = static_cast<int>(sizeof(Pixel));
    if (band != 0 && dataset->GetRasterBand(band)->RasterIO(
                         GF_Read, 0, 0, kTileSize, kTileSize, channels[i], kTileSize, kTileSize, GDT_Byte,
                         kPixelBytes, GSpacing{kPixelBytes} * kTileSize, nullptr) != CE_None) {
      return std::nullopt;
    }
  }
  return tile;
}

}  // namespace tiler
