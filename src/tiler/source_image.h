// The image of a run: whether it can be tiled at all, and what of it is shown.
#ifndef MOSAICON_TILER_SOURCE_IMAGE_H_
#define MOSAICON_TILER_SOURCE_IMAGE_H_

#include <optional>
#include <string>
#include <vector>

#include "tiler/memory_file.h"
#include "tiler/memory_plan.h"
#include "tiler/request.h"

class GDALDataset;

namespace tiler {

class GdalErrors;
class RunLog;

// Opens the image of a request, checks it before anything is written, and prepares what GDAL is to read in
// its place where it would misread the image:
// - bands that are no colour and no transparency are left out (the last of two or four bands is taken for
//   transparency, whatever it holds);
// - an image with transparency of its own loses its nodata values, and the transparent colour is not applied:
//   one mask would be built from all bands, in which every transparent pixel of another colour turns opaque;
// - an image that is in the map's projection gets the transparent colour in its metadata, because nothing
//   applies it when it is not reprojected;
// - what gdalwarp leaves outside of an image, or where a mask hides it, is transparent (WithTransparency);
// - values that are no colours become colours (MakeColourImage).
// That lives in GDAL's memory file system, as long as this object. One thread at a time.
class SourceImage {
 public:
  // Throws TilerError.
  SourceImage(const Request& request, RunLog& log);
  SourceImage(const SourceImage&) = delete;
  SourceImage& operator=(const SourceImage&) = delete;

  // What GDAL opens.
  const std::string& Name() const { return m_name; }
  // The coordinate system that the request asks for; empty: the image's own.
  const std::string& Srs() const { return m_srs; }
  // Its files, and what small ones hold, or when large ones were written; and what is read in their place.
  // The same for an image that nobody has changed, and that is shown in the same way.
  const std::string& State() const { return m_state; }
  // How it lies in its file, or in the files that it is made of.
  const SourceLayout& Layout() const { return m_layout; }
  // Whether all threads had better read from one and the same image: its strips are decoded once then, and
  // kept once. Where pixels may have to be computed, several threads are quicker than one.
  bool IsToBeShared() const { return m_layout.IsStriped() && !m_isComputed; }
  // The transparent colour, a value for each colour band; empty: none is to be applied.
  const std::vector<int>& Transparent() const { return m_transparent; }

 private:
  // Of an image whose bands hold colours.
  void ChooseBands(GDALDataset& image, bool isTransparent, const std::optional<Colour>& transparent,
                   bool isInMapSrs, RunLog& log, GdalErrors& errors);
  // Of any other.
  void MakeColours(GDALDataset& image, const std::optional<Colour>& transparent, RunLog& log,
                   GdalErrors& errors);
  void SetTransparent(const Colour& colour, std::size_t colours);

  std::string m_name;
  std::string m_srs;
  std::string m_state;
  SourceLayout m_layout;
  bool m_isComputed = false;
  std::vector<int> m_transparent;
  std::vector<MemoryFile> m_virtual;  // each made of the one before; the last has the name
};

}  // namespace tiler

#endif  // MOSAICON_TILER_SOURCE_IMAGE_H_
