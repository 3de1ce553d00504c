// Reads pixels of the source image as colours with transparency.
#ifndef MOSAICON_TILER_SOURCE_PIXELS_H_
#define MOSAICON_TILER_SOURCE_PIXELS_H_

#include <memory>
#include <string>
#include <vector>

#include "tiler/gdal_errors.h"
#include "tiler/gdal_objects.h"
#include "tiler/pixel_window.h"
#include "tiler/tile_pixels.h"

namespace tiler {

class RunLog;

// An image of bytes: its first bands are colours.
struct PixelSource {
  // What says which of its pixels are transparent, beside the hidden colour.
  enum class Transparency { kNone, kLastBand, kMask };

  std::string name;  // as GDAL opens it
  int colours = 0;   // bands, 1 (grey) or 3
  Transparency transparency = Transparency::kNone;
  std::vector<int> hidden;  // a colour that shows nothing, a value for each colour band; empty: there is none
  // All threads read from this one when there is one.
  std::shared_ptr<SharedImage> shared;
};

// One thread at a time: each has a reader of its own.
class SourcePixels {
 public:
  // Throws TilerError, like all of it.
  SourcePixels(const PixelSource& source, RunLog& log);

  SharedImage& Image() const { return *m_image; }
  int Width() const { return m_image->dataset->GetRasterXSize(); }
  int Height() const { return m_image->dataset->GetRasterYSize(); }

  // Fills pixels with those of a window of the image, in rows.
  void Read(const PixelWindow& window, std::vector<Pixel>& pixels);

 private:
  CPLErr ReadBands(const PixelWindow& window, Pixel& first);
  CPLErr ReadMask(const PixelWindow& window, Pixel& first);

  PixelSource m_source;
  GdalErrors m_errors;
  std::shared_ptr<SharedImage> m_image;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_SOURCE_PIXELS_H_
