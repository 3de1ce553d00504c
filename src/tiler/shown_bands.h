// Which bands of an image are shown.
#ifndef MOSAICON_TILER_SHOWN_BANDS_H_
#define MOSAICON_TILER_SHOWN_BANDS_H_

#include <vector>

class GDALDataset;

namespace tiler {

// Numbers of bands, from 1 on.
struct ShownBands {
  std::vector<int> colours;  // 1: grey, or 3: red, green and blue
  std::vector<int> alpha;    // 0 or 1

  std::vector<int> All() const;
};

// Whether the bands are what the tiles hold: up to four of bytes that are colours, or transparency. In others
// the values have to be made colours first.
bool HoldsColours(GDALDataset& image);

// Whether one of its bands calls a value no data.
bool HasNodata(GDALDataset& image);

// Whether it has a band of transparency, or a mask; values of no data are none.
bool HasTransparency(GDALDataset& image);

// Where the bands hold colours they are taken in their order, else as they are marked, or when they are not,
// in their order. Throws TilerError when there are only bands of transparency.
ShownBands ShownBandsOf(GDALDataset& image);

}  // namespace tiler

#endif  // MOSAICON_TILER_SHOWN_BANDS_H_
