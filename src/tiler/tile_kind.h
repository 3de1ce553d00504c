// The files that a tile can be. Portable, no state.
#ifndef MOSAICON_TILER_TILE_KIND_H_
#define MOSAICON_TILER_TILE_KIND_H_

#include <cstdint>
#include <vector>

namespace tiler {

enum class TileKind : std::uint8_t { kPng, kJpeg, kWebp };

// What the tiles of a map are.
enum class TileFormat {
  kPng,   // all exact
  kAuto,  // JPEG where nothing is transparent, which is a fraction as large; PNG where something is
  kWebp,  // all smaller still, but for browsers alone
};

// As options and settings call it.
constexpr const char* NameOf(TileFormat format) {
  return format == TileFormat::kPng ? "png" : format == TileFormat::kAuto ? "auto" : "webp";
}

// Without its dot.
constexpr const char* ExtensionOf(TileKind kind) {
  return kind == TileKind::kPng ? "png" : kind == TileKind::kJpeg ? "jpg" : "webp";
}

constexpr const char* MimeTypeOf(TileKind kind) {
  return kind == TileKind::kPng ? "image/png" : kind == TileKind::kJpeg ? "image/jpeg" : "image/webp";
}

// What a tile of a map can be; the first where it has no transparency.
inline std::vector<TileKind> KindsOf(TileFormat format) {
  if (format == TileFormat::kAuto) return {TileKind::kJpeg, TileKind::kPng};
  return {format == TileFormat::kWebp ? TileKind::kWebp : TileKind::kPng};
}

}  // namespace tiler

#endif  // MOSAICON_TILER_TILE_KIND_H_
