#include "tiler/lossy_encoder.h"

#include <cpl_error.h>
#include <cpl_string.h>

#include <array>
#include <cstdint>

#include "files/one_line.h"
#include "tiler/tiler_error.h"

namespace tiler {

namespace {

const char* DriverOf(TileKind kind) {
  return kind == TileKind::kJpeg ? "JPEG" : "WEBP";
}

// An image whose pixels are the tile's own memory: the first so many of its channels.
GDALDatasetUniquePtr ImageOf(const Tile& tile, int channels) {
  GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("MEM");
  GDALDatasetUniquePtr image(
      driver == nullptr ? nullptr : driver->Create("", kTileSize, kTileSize, 0, GDT_Byte, nullptr));
  if (!image) throw TilerError("GDAL has no images in memory");
  for (int i = 0; i < channels; ++i) {
    // It is only read from.
    auto* const bytes = reinterpret_cast<std::uint8_t*>(const_cast<Pixel*>(tile.data())) + i;
    std::array<char, 32> address = {};
    address[static_cast<std::size_t>(
        CPLPrintPointer(address.data(), bytes, static_cast<int>(address.size()) - 1))] = '\0';
    CPLStringList options;
    options.SetNameValue("DATAPOINTER", address.data());
    options.SetNameValue("PIXELOFFSET", std::to_string(sizeof(Pixel)).c_str());
    options.SetNameValue("LINEOFFSET", std::to_string(sizeof(Pixel) * kTileSize).c_str());
    image->AddBand(GDT_Byte, options.List());
  }
  return image;
}

}  // namespace

LossyEncoder::LossyEncoder(TileKind kind, int colours)
    // JPEG knows grey, WebP does not.
    : m_kind(kind),
      m_colours(kind == TileKind::kJpeg ? colours : 3),
      m_file(std::string(".") + ExtensionOf(kind)) {}

std::string_view LossyEncoder::Encode(const Tile& tile) {
  const int channels = m_kind == TileKind::kWebp && !IsOpaque(tile) ? 4 : m_colours;
  const GDALDatasetUniquePtr image = ImageOf(tile, channels);
  GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName(DriverOf(m_kind));
  CPLStringList options;
  options.SetNameValue("QUALITY",
                       std::to_string(m_kind == TileKind::kJpeg ? kJpegQuality : kWebpQuality).c_str());
  CPLErrorReset();
  if (driver == nullptr || !GDALDatasetUniquePtr(driver->CreateCopy(m_file.Name().c_str(), image.get(), TRUE,
                                                                    options.List(), nullptr, nullptr))) {
    throw TilerError(std::string("a tile could not be written as ") + DriverOf(m_kind) + ": " +
                     files::OneLine(CPLGetLastErrorMsg()));
  }
  m_content = m_file.Text();
  return m_content;
}

}  // namespace tiler
