// What GDAL gives out, with owners, and told when it gives nothing.
#ifndef MOSAICON_TILER_GDAL_OBJECTS_H_
#define MOSAICON_TILER_GDAL_OBJECTS_H_

#include <gdal_alg.h>
#include <gdal_priv.h>

#include <memory>
#include <mutex>
#include <string>

namespace tiler {

class GdalErrors;

struct TransformerDeleter {
  void operator()(void* transformer) const { GDALDestroyGenImgProjTransformer(transformer); }
};
// Between the pixels of an image and positions elsewhere.
using Transformer = std::unique_ptr<void, TransformerDeleter>;

// Several threads read from it, one at a time.
struct SharedImage {
  GDALDatasetUniquePtr dataset;
  std::mutex mutex;
};

// For reading. They throw TilerError with this text, and with what GDAL complains of.
GDALDatasetUniquePtr OpenImage(const std::string& name, const GdalErrors& errors, const std::string& failure);
std::shared_ptr<SharedImage> OpenShared(const std::string& name, const GdalErrors& errors,
                                        const std::string& failure);

}  // namespace tiler

#endif  // MOSAICON_TILER_GDAL_OBJECTS_H_
