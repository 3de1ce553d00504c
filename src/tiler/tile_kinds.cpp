#include "tiler/tile_kinds.h"

namespace tiler {

namespace {

void Append(std::string& list, const std::string& entry) {
  if (!list.empty()) list += ", ";
  list += entry;
}

std::string Quoted(const std::string& text) {
  return '"' + text + '"';
}

}  // namespace

TileKinds::TileKinds(const Pyramid& pyramid, TileFormat format)
    : m_pyramid(pyramid), m_kinds(KindsOf(format)) {
  for (int level = pyramid.Coarsest(); m_kinds.size() > 1 && level <= pyramid.Finest(); ++level) {
    m_seconds.emplace_back(static_cast<std::size_t>(pyramid.Range(level).Count()));
  }
}

std::size_t TileKinds::PlaceOf(const TileId& tile) const {
  const TileRange& range = m_pyramid.Range(tile.level);
  return static_cast<std::size_t>((tile.row - range.south) * range.Columns() + tile.column - range.west);
}

void TileKinds::Set(const TileId& tile, TileKind kind) {
  if (m_seconds.empty()) return;
  const auto level = static_cast<std::size_t>(tile.level - m_pyramid.Coarsest());
  std::vector<bool>::reference isSecond = m_seconds[level][PlaceOf(tile)];
  const bool isNow = kind != m_kinds.front();
  m_secondCount += static_cast<int>(isNow) - static_cast<int>(isSecond);
  isSecond = isNow;
}

TileKind TileKinds::Of(const TileId& tile) const {
  if (m_seconds.empty()) return m_kinds.front();
  return m_kinds[m_seconds[static_cast<std::size_t>(tile.level - m_pyramid.Coarsest())][PlaceOf(tile)] ? 1
                                                                                                       : 0];
}

TileKind TileKinds::Usual() const {
  return 2 * m_secondCount > m_pyramid.TileCount() ? m_kinds.back() : m_kinds.front();
}

std::vector<TileKind> TileKinds::Other() const {
  if (m_secondCount == 0 || m_secondCount == m_pyramid.TileCount()) return {};
  return {Usual() == m_kinds.front() ? m_kinds.back() : m_kinds.front()};
}

std::vector<std::int64_t> TileKinds::RunsOf(int level) const {
  std::vector<std::int64_t> runs;
  if (Other().empty()) return runs;
  bool isCounted = Usual() != m_kinds.front();  // whether runs of set bits have their turn
  std::int64_t length = 0;
  for (const bool isSecond : m_seconds[static_cast<std::size_t>(level - m_pyramid.Coarsest())]) {
    if (isSecond != isCounted) {
      runs.push_back(length);
      length = 0;
      isCounted = isSecond;
    }
    ++length;
  }
  if (runs.size() % 2 == 1) runs.push_back(length);
  return runs;
}

std::string TileKinds::Text() const {
  std::string kinds = Quoted(ExtensionOf(Usual()));
  for (const TileKind kind : Other()) Append(kinds, Quoted(ExtensionOf(kind)));
  std::string levels;
  for (int level = m_pyramid.Coarsest(); level <= m_pyramid.Finest(); ++level) {
    std::string lengths;
    for (const std::int64_t length : RunsOf(level)) Append(lengths, std::to_string(length));
    if (!lengths.empty()) Append(levels, Quoted(std::to_string(level)) + ": [" + lengths + "]");
  }
  return "{\"kinds\": [" + kinds + "], \"runs\": {" + levels + "}}";
}

}  // namespace tiler
