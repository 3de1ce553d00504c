// An image whose values are no colours yet, as one whose values are.
#ifndef MOSAICON_TILER_COLOUR_IMAGE_H_
#define MOSAICON_TILER_COLOUR_IMAGE_H_

#include <optional>
#include <vector>

#include "tiler/memory_file.h"
#include "tiler/request.h"
#include "tiler/shown_bands.h"

class GDALDataset;

namespace tiler {

class GdalErrors;
class RunLog;

// What becomes of the values of a band.
enum class How { kAsItIs, kByPalette, kStretched };

How HowToShow(GDALDataset& image, const ShownBands& shown);

// Virtual rasters, each made of the one before. The last has bytes: grey, or red, green and blue, and behind
// them transparency where the image has any.
struct ColourImage {
  std::vector<MemoryFile> files;
  std::size_t colours = 0;  // 1 or 3
  // Still to be applied to the colours.
  std::optional<Colour> transparent;
};

// - Entries of a palette become their colours.
// - Other values than bytes are stretched: see ShownRangeOf.
// - Transparency is a band, a mask, values of no data or a transparent entry of the palette.
// - Of stretched images the transparent colour is what it stands for in the file, unless that has
// transparency:
//   black is the value 0 in all bands, white the largest one, and others do not occur.
// image: does not hold colours (see HoldsColours); has to stay as long as the result. transparent: empty when
// the image has a band of transparency, or a mask, of its own. The log gets what was chosen. Throws
// TilerError.
ColourImage MakeColourImage(GDALDataset& image, const ShownBands& shown,
                            const std::optional<Colour>& transparent, RunLog& log, GdalErrors& errors);

}  // namespace tiler

#endif  // MOSAICON_TILER_COLOUR_IMAGE_H_
