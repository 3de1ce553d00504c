// libFuzzer: the files of tiles are what libpng takes them for. The first byte chooses the colours
// and how the rest becomes pixels.
#include <png.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "tiler/png_tile.h"

namespace {

using tiler::Pixel;
using tiler::Tile;

// What the image is made of: the bytes over and over again, or each held for so many pixels.
Tile TileOf(const std::vector<uint8_t>& bytes, unsigned choice) {
  const bool isGrey = (choice & 1) != 0;
  const bool isOpaque = (choice & 2) != 0;
  const std::size_t held = std::size_t{1} << (choice >> 2 & 15);
  Tile tile(tiler::kTilePixels);
  std::size_t next = 0;
  const auto value = [&](std::size_t pixel) { return bytes[(pixel / held + next++ % 4) % bytes.size()]; };
  for (std::size_t i = 0; i < tile.size(); ++i) {
    Pixel& pixel = tile[i];
    pixel.red = value(i);
    pixel.green = isGrey ? pixel.red : value(i);
    pixel.blue = isGrey ? pixel.red : value(i);
    pixel.alpha = isOpaque ? 255 : value(i);
  }
  return tile;
}

void CheckFile(const Tile& tile, int colours) {
  tiler::PngEncoder encoder(colours);
  const std::string_view file = encoder.Encode(tile);
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, file.data(), file.size()) == 0) __builtin_trap();
  if (image.width != tiler::kTileSize || image.height != tiler::kTileSize) __builtin_trap();
  image.format = PNG_FORMAT_RGBA;
  Tile back(tile.size());
  if (png_image_finish_read(&image, nullptr, back.data(), 0, nullptr) == 0) __builtin_trap();
  if (image.warning_or_error != 0 || back != tile) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const std::vector<uint8_t> bytes(data + 1, data + size);
  CheckFile(TileOf(bytes, data[0]), (data[0] & 1) != 0 ? 1 : 3);
  return 0;
}
