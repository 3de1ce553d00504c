#include "kvtools/screen_geometry.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr int kUnscaledDpi = 96;

// value * numerator / denominator, rounded to the nearest, at least 1.
int Scale(int value, int numerator, int denominator) {
  const int64_t scaled = (static_cast<int64_t>(value) * numerator + denominator / 2) / denominator;
  return static_cast<int>(std::max<int64_t>(scaled, 1));
}

}  // namespace

PixelSize EnclosingSize(const std::vector<PixelRect>& rects) {
  if (rects.empty()) return {};
  int left = rects[0].left;
  int top = rects[0].top;
  int right = left;
  int bottom = top;
  for (const PixelRect& each : rects) {
    left = std::min(left, each.left);
    top = std::min(top, each.top);
    right = std::max(right, each.left + each.size.width);
    bottom = std::max(bottom, each.top + each.size.height);
  }
  return {right - left, bottom - top};
}

PixelRect PlaceInMiddle(PixelSize bitmap, int dpi, const PixelRect& area) {
  PixelSize size = {Scale(bitmap.width, dpi, kUnscaledDpi), Scale(bitmap.height, dpi, kUnscaledDpi)};
  if (size.width > area.size.width) {
    size = {area.size.width, Scale(bitmap.height, area.size.width, bitmap.width)};
  }
  if (size.height > area.size.height) {
    size = {Scale(bitmap.width, area.size.height, bitmap.height), area.size.height};
  }
  return {area.left + (area.size.width - size.width) / 2, area.top + (area.size.height - size.height) / 2,
          size};
}
