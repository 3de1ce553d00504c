#include "job/preview_image.h"

#include <gdal_priv.h>

#include <cmath>
#include <numeric>
#include <vector>

#include "kvtools/split_path.h"

namespace {

constexpr double kPreviewPixels = 76800.0;
constexpr size_t kMaxExtension = 8;

GDALDriver* FindOutputDriver(const std::string& outputPath) {
  const std::string extension = SplitPath(outputPath).extension;
  if (extension.size() > kMaxExtension) return nullptr;
  const char* name = nullptr;
  if (extension == ".jpg") name = "JPEG";
  if (extension == ".tif") name = "GTiff";
  if (extension == ".png") name = "PNG";
  return name != nullptr ? GetGDALDriverManager()->GetDriverByName(name) : nullptr;
}

// Reads all bands of input, resampled to width x height, into a new in-memory dataset.
GDALDatasetUniquePtr ReduceInMemory(GDALDataset& input, GDALDriver& memory, const char* name, int width,
                                    int height) {
  const int bandCount = input.GetRasterCount();
  if (bandCount < 1 || width < 1 || height < 1) return nullptr;
  const GDALDataType type = input.GetRasterBand(1)->GetRasterDataType();
  GDALDatasetUniquePtr reduced(memory.Create(name, width, height, bandCount, type, nullptr));
  if (reduced == nullptr) return nullptr;

  const GSpacing sampleSize = GDALGetDataTypeSize(type) / 8;
  const GSpacing pixelSpace = sampleSize * bandCount;
  const GSpacing lineSpace = pixelSpace * width;
  std::vector<GByte> pixels(static_cast<size_t>(lineSpace) * static_cast<size_t>(height));
  std::vector<int> bands(static_cast<size_t>(bandCount));
  std::iota(bands.begin(), bands.end(), 1);

  if (input.RasterIO(GF_Read, 0, 0, input.GetRasterXSize(), input.GetRasterYSize(), pixels.data(), width,
                     height, type, bandCount, bands.data(), pixelSpace, lineSpace, sampleSize,
                     nullptr) != CE_None ||
      reduced->RasterIO(GF_Write, 0, 0, width, height, pixels.data(), width, height, type, bandCount,
                        bands.data(), pixelSpace, lineSpace, sampleSize, nullptr) != CE_None) {
    return nullptr;
  }
  return reduced;
}

// Writes the picture beside its final name and moves it there when it is complete; errors that only
// show when the file is closed count too.
bool WriteCopy(GDALDriver& driver, const std::string& path, GDALDataset& picture) {
  const std::string partial = path + ".part";
  CPLErrorReset();
  GDALDatasetUniquePtr copy(driver.CreateCopy(partial.c_str(), &picture, TRUE, nullptr, nullptr, nullptr));
  bool written = copy != nullptr;
  copy.reset();
  written = written && CPLGetLastErrorType() < CE_Failure;
  if (written) {
    VSIStatBufL status;
    if (VSIStatL(path.c_str(), &status) == 0) VSIUnlink(path.c_str());
    written = VSIRename(partial.c_str(), path.c_str()) == 0;
  }
  if (!written) VSIUnlink(partial.c_str());
  return written;
}

}  // namespace

void ComputePreviewSize(int width, int height, int& previewWidth, int& previewHeight) {
  const double scale = std::sqrt(kPreviewPixels / (static_cast<double>(width) * height));
  previewWidth = static_cast<int>(std::floor(width * scale + 0.5));
  previewHeight = static_cast<int>(std::floor(height * scale + 0.5));
}

int MakePreviewImage(const std::string& inputPath, const std::string& outputPath) {
  if (inputPath.empty() || outputPath.empty()) return 0;
  GDALDriver* memory = GetGDALDriverManager()->GetDriverByName("MEM");
  GDALDriver* driver = FindOutputDriver(outputPath);
  if (memory == nullptr || driver == nullptr) return 0;

  GDALDatasetUniquePtr input(GDALDataset::FromHandle(GDALOpen(inputPath.c_str(), GA_ReadOnly)));
  if (input == nullptr) return 0;
  int width = 0;
  int height = 0;
  ComputePreviewSize(input->GetRasterXSize(), input->GetRasterYSize(), width, height);
  const GDALDatasetUniquePtr reduced = ReduceInMemory(*input, *memory, outputPath.c_str(), width, height);
  input.reset();
  if (reduced == nullptr) return 0;
  return WriteCopy(*driver, outputPath, *reduced) ? 1 : 0;
}
