// Virtual rasters in GDAL's memory.
#ifndef MOSAICON_TILER_VIRTUAL_RASTER_H_
#define MOSAICON_TILER_VIRTUAL_RASTER_H_

#include <gdal_priv.h>

#include <string>
#include <vector>

#include "tiler/memory_file.h"

namespace tiler {

class GdalErrors;

// Of these bands, numbers from 1 on. nodata: the value that they call no data, or "none". metadata: empty, or
// NAME=VALUE. Throws TilerError.
MemoryFile MakeVirtual(GDALDataset& image, const std::vector<int>& bands, const std::string& nodata,
                       const std::string& metadata, GdalErrors& errors);

// Of bytes, without any bands yet, where the image lies.
GDALDatasetUniquePtr MakeEmptyVirtual(GDALDataset& image, const std::string& name);

// How a virtual raster is described, with paths beside its own place; empty for other images.
std::string XmlOf(GDALDataset& image);

}  // namespace tiler

#endif  // MOSAICON_TILER_VIRTUAL_RASTER_H_
