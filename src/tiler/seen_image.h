// An image in the colours that its tiles have, for pictures of it.
#ifndef MOSAICON_TILER_SEEN_IMAGE_H_
#define MOSAICON_TILER_SEEN_IMAGE_H_

#include <gdal_priv.h>

#include <string>

#include "tiler/colour_image.h"

namespace tiler {

// One thread at a time. The image, which it is made of, has to stay as long.
class SeenImage {
 public:
  // image: does not hold colours (see HoldsColours). Throws TilerError.
  explicit SeenImage(GDALDataset& image);

  // Of bytes, grey or red, green and blue, and transparency perhaps.
  GDALDataset& Dataset() const { return *m_dataset; }
  // How many of its bands are colours: 1 or 3.
  int Colours() const { return static_cast<int>(m_files.colours); }

 private:
  ColourImage m_files;
  GDALDatasetUniquePtr m_dataset;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_SEEN_IMAGE_H_
