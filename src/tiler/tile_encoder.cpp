#include "tiler/tile_encoder.h"

namespace tiler {

TileEncoder::TileEncoder(TileFormat format, int colours) : m_format(format), m_exact(colours) {
  if (format != TileFormat::kPng) m_small.emplace(KindsOf(format).front(), colours);
}

EncodedTile TileEncoder::Encode(const Tile& tile) {
  const bool isSmall = m_format == TileFormat::kWebp || (m_format == TileFormat::kAuto && IsOpaque(tile));
  if (isSmall) return {KindsOf(m_format).front(), m_small->Encode(tile)};
  return {TileKind::kPng, m_exact.Encode(tile)};
}

}  // namespace tiler
