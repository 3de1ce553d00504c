#include "progress/bar_geometry.h"

#include <algorithm>

namespace {

constexpr int kBlocks = 18;
constexpr int kGap = 2;
// Rounds the number of blocks up, unless a block has barely begun.
constexpr double kBlockRounding = 0.9;

int Length(const BarRect& client, BarDirection direction) {
  return direction == BarDirection::kHorizontal ? client.right - client.left : client.bottom - client.top;
}

// The piece of client that lies at distance from where the bar starts.
BarRect Piece(const BarRect& client, BarDirection direction, int distance, int length) {
  BarRect piece = client;
  if (direction == BarDirection::kHorizontal) {
    piece.left = client.left + distance;
    piece.right = piece.left + length;
  } else {
    piece.bottom = client.bottom - distance;
    piece.top = piece.bottom - length;
  }
  return piece;
}

double VisibleFraction(double fraction) {
  return std::clamp(fraction, 0.0, 1.0);
}

}  // namespace

BarRect FilledRect(const BarRect& client, BarDirection direction, double fraction) {
  const int length = static_cast<int>(Length(client, direction) * VisibleFraction(fraction));
  return Piece(client, direction, 0, length);
}

int BlockCount(double fraction) {
  return static_cast<int>(VisibleFraction(fraction) * kBlocks + kBlockRounding);
}

std::vector<BarRect> BlockRects(const BarRect& client, BarDirection direction, double fraction) {
  // The division is not an integer one: what is shorter than the number of blocks has blocks of length 0.
  const int length = static_cast<int>((Length(client, direction) - kBlocks) / static_cast<double>(kBlocks));
  const int count = BlockCount(fraction);
  std::vector<BarRect> blocks;
  blocks.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) blocks.push_back(Piece(client, direction, i * (length + kGap), length));
  return blocks;
}

BarPoint VerticalTextOrigin(const BarRect& client, int length, int height) {
  // Shifts, and not halves, so that text larger than the bar is rounded to the same side.
  return {(client.right - height - client.left) >> 1,
          client.bottom - ((client.bottom - client.top - length) >> 1)};
}
