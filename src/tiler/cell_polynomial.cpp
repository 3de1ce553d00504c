#include "tiler/cell_polynomial.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tiler {

void AddPointsOfCell(double left, double top, double width, double height, std::vector<double>& xs,
                     std::vector<double>& ys) {
  const auto add = [&](double across, double down) {
    xs.push_back(left + across * width);
    ys.push_back(top + down * height);
  };
  for (int row = 0; row < kKnown; ++row) {
    for (int column = 0; column < kKnown; ++column) {
      add(static_cast<double>(column) / kParts, static_cast<double>(row) / kParts);
    }
  }
  for (const auto& [across, down] : kBetween) add(across, down);
}

CellPositions PositionsOfCell(const double* xs, const double* ys) {
  CellPositions positions;
  std::copy_n(xs, positions.xs.known.size(), positions.xs.known.begin());
  std::copy_n(ys, positions.ys.known.size(), positions.ys.known.begin());
  for (std::size_t i = 0; i < kPointsOfCell; ++i) {
    positions.isSeen = positions.isSeen || std::isfinite(xs[i] + ys[i]);
  }
  for (std::size_t i = 0; i < kBetween.size(); ++i) {
    const auto [across, down] = kBetween[i];
    const std::size_t place = positions.xs.known.size() + i;
    const double error = std::max(std::fabs(positions.xs.AlongRow(down).At(across) - xs[place]),
                                  std::fabs(positions.ys.AlongRow(down).At(across) - ys[place]));
    // Whatever is compared with what is no number is false.
    if (!(error <= positions.error)) positions.error = error;
    if (std::isnan(positions.error)) break;
  }
  return positions;
}

}  // namespace tiler
