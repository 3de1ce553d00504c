// Positions in a source image as a function of the place on the map: within a small square cell they are
// close to a polynomial, whose values are known from few points. Portable, no state.
#ifndef MOSAICON_TILER_CELL_POLYNOMIAL_H_
#define MOSAICON_TILER_CELL_POLYNOMIAL_H_

#include <array>
#include <cstddef>
#include <functional>
#include <vector>

namespace tiler {

// Turns positions on the map into positions in the source image, in pixels of it. What has none becomes
// infinite or no number.
using ExactPositions = std::function<void(std::vector<double>& xs, std::vector<double>& ys)>;

// A polynomial of the second degree in one variable, from its values at 0, 1/2 and 1.
struct Polynomial {
  double constant;
  double linear;
  double square;

  Polynomial(double first, double middle, double last)
      : constant(first), linear(-3 * first + 4 * middle - last), square(2 * first - 4 * middle + 2 * last) {}
  double At(double place) const { return constant + place * (linear + place * square); }
};

// The parts of a cell's side between known points.
inline constexpr int kParts = 2;
inline constexpr int kKnown = kParts + 1;

// What is known of a cell: values at three rows of three points, from its first corner to its last one.
struct CellValues {
  std::array<double, std::size_t{kKnown}* kKnown> known = {};

  // Along a row of the cell. down: its place, 0 to 1, as that in the row is.
  Polynomial AlongRow(double down) const {
    return {Polynomial(known[0], known[3], known[6]).At(down),
            Polynomial(known[1], known[4], known[7]).At(down),
            Polynomial(known[2], known[5], known[8]).At(down)};
  }
};

// How far from the truth such polynomials are is seen at points between the known ones.
inline constexpr std::array<std::array<double, 2>, 8> kBetween = {{{0.25, 0.75},
                                                                   {0.75, 0.25},
                                                                   {0.25, 0.25},
                                                                   {0.75, 0.75},
                                                                   {0.11, 0.52},
                                                                   {0.89, 0.48},
                                                                   {0.47, 0.13},
                                                                   {0.53, 0.87}}};

// Of the known points and those between, in this order.
inline constexpr std::size_t kPointsOfCell = std::size_t{kKnown} * kKnown + kBetween.size();

// Appends those points of a cell on the map, whose first corner and side these are. Both sides may run either
// way.
void AddPointsOfCell(double left, double top, double width, double height, std::vector<double>& xs,
                     std::vector<double>& ys);

struct CellPositions {
  CellValues xs;
  CellValues ys;
  double error = 0;     // the largest that was seen, in source pixels; no number where a position is none
  bool isSeen = false;  // whether any of its points has a position
};

// From the positions of the points of a cell.
CellPositions PositionsOfCell(const double* xs, const double* ys);

}  // namespace tiler

#endif  // MOSAICON_TILER_CELL_POLYNOMIAL_H_
