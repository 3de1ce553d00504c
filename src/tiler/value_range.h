// Which values of an image are shown as black and as white.
#ifndef MOSAICON_TILER_VALUE_RANGE_H_
#define MOSAICON_TILER_VALUE_RANGE_H_

#include <vector>

class GDALDataset;

namespace tiler {

class GdalErrors;

struct ValueRange {
  double black = 0;
  double white = 1;  // larger than black
};

// Two per cent of the values are darker, two per cent are brighter. The order of values is of no meaning;
// they are finite. Without any: the usual range.
ValueRange RangeOf(std::vector<double> values);

// Of the first bands of the image, as many as are colours, one range for all of them: so the colours keep
// their hue. Pixels that its mask hides do not count. Of large images, pixels in a fixed pattern all over it,
// so that every run comes to the same. Throws TilerError.
ValueRange ShownRangeOf(GDALDataset& image, int colours, GdalErrors& errors);

}  // namespace tiler

#endif  // MOSAICON_TILER_VALUE_RANGE_H_
