#include "job/preview_image.h"

#include <gdal_priv.h>

#include <cmath>
#include <numeric>
#include <vector>

#include "files/system_files.h"
#include "job/partial_files.h"
#include "kvtools/split_path.h"
#include "tiler/seen_image.h"
#include "tiler/shown_bands.h"
#include "tiler/tiler_error.h"

namespace {

constexpr double kPreviewPixels = 76800.0;
constexpr char kMemoryFolder[] = "/vsimem/mosaicon_preview";
constexpr char kMemoryFile[] = "/vsimem/mosaicon_preview/picture";

GDALDriver* FindOutputDriver(const std::string& outputPath) {
  const std::string extension = SplitPath(outputPath).extension;
  const char* name = nullptr;
  if (extension == ".jpg") name = "JPEG";
  if (extension == ".tif") name = "GTiff";
  if (extension == ".png") name = "PNG";
  return name != nullptr ? GetGDALDriverManager()->GetDriverByName(name) : nullptr;
}

bool Refuse(const std::string& reason) {
  CPLError(CE_Failure, CPLE_AppDefined, "%s", reason.c_str());
  return false;
}

// An orthophoto may be a JPEG itself, or consist of several files, and lie in the output folder.
bool IsPartOf(GDALDataset& input, const std::string& path) {
  const CPLStringList parts(input.GetFileList());
  SystemFiles files;
  for (int i = 0; i < parts.size(); ++i) {
    if (IsSameFile(files, parts[i], path)) return true;
  }
  return false;
}

bool IsJpeg(GDALDriver& format) {
  return EQUAL(format.GetDescription(), "JPEG");
}

// JPEG knows no grey with transparency: the grey alone is the picture then.
int CountPictureBands(GDALDriver& format, GDALDataset& input) {
  const int count = input.GetRasterCount();
  return count == 2 && IsJpeg(format) ? 1 : count;
}

// Reads the first bands of input, resampled to width x height, into a new in-memory dataset.
GDALDatasetUniquePtr ReduceInMemory(GDALDataset& input, int bandCount, GDALDriver& memory, const char* name,
                                    int width, int height) {
  if (width < 1 || height < 1) return nullptr;
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

// A JPEG of values that are no colours shows the tiles' colours: it holds bytes only, and no palette.
GDALDatasetUniquePtr Reduce(GDALDataset& input, GDALDriver& format, GDALDriver& memory, const char* name,
                            int width, int height) {
  if (!IsJpeg(format) || tiler::HoldsColours(input)) {
    return ReduceInMemory(input, CountPictureBands(format, input), memory, name, width, height);
  }
  try {
    const tiler::SeenImage seen(input);
    return ReduceInMemory(seen.Dataset(), seen.Colours(), memory, name, width, height);
  } catch (const tiler::TilerError& failure) {
    Refuse(failure.what());
    return nullptr;
  }
}

bool WriteBytes(const std::string& path, const GByte* bytes, size_t size) {
  VSILFILE* file = VSIFOpenL(path.c_str(), "wb");
  if (file == nullptr) return Refuse("the file cannot be made");
  const bool written = VSIFWriteL(bytes, 1, size, file) == size;
  return (VSIFCloseL(file) == 0 && written) || Refuse("the disk is full or broken");
}

// Writes beside the final name, which has a short name of its own because the final one may be as long as
// names can be, and moves it there when it is complete.
bool PutInPlace(const std::string& path, const GByte* bytes, size_t size) {
  const PathParts parts = SplitPath(path);
  const std::string partial = JoinPath(parts.drive, parts.directory, "p", kPartialExtension);
  bool written = WriteBytes(partial, bytes, size);
  if (written) {
    VSIStatBufL status;
    if (VSIStatL(path.c_str(), &status) == 0) VSIUnlink(path.c_str());
    written = VSIRename(partial.c_str(), path.c_str()) == 0;
  }
  if (!written) VSIUnlink(partial.c_str());
  return written;
}

// Encodes in memory; errors that only show when the picture is closed count too.
bool WriteCopy(GDALDriver& format, const std::string& path, GDALDataset& picture) {
  CPLErrorReset();
  GDALDatasetUniquePtr copy(format.CreateCopy(kMemoryFile, &picture, TRUE, nullptr, nullptr, nullptr));
  bool written = copy != nullptr;
  copy.reset();
  vsi_l_offset size = 0;
  const GByte* bytes = VSIGetMemFileBuffer(kMemoryFile, &size, FALSE);
  written = written && CPLGetLastErrorType() < CE_Failure && bytes != nullptr &&
            PutInPlace(path, bytes, static_cast<size_t>(size));
  VSIRmdirRecursive(kMemoryFolder);
  return written;
}

bool MakePicture(const std::string& inputPath, const std::string& outputPath) {
  if (inputPath.empty() || outputPath.empty()) return false;
  GDALDriver* memory = GetGDALDriverManager()->GetDriverByName("MEM");
  GDALDriver* format = FindOutputDriver(outputPath);
  if (memory == nullptr || format == nullptr) return false;

  GDALDatasetUniquePtr input(GDALDataset::FromHandle(GDALOpen(inputPath.c_str(), GA_ReadOnly)));
  if (input == nullptr) return false;
  if (input->GetRasterCount() < 1) return Refuse("the image has no bands");
  SystemFiles files;
  if (IsSameFile(files, inputPath, outputPath) || IsPartOf(*input, outputPath)) {
    return Refuse("it would replace the orthophoto");
  }
  int width = 0;
  int height = 0;
  ComputePreviewSize(input->GetRasterXSize(), input->GetRasterYSize(), width, height);
  const GDALDatasetUniquePtr reduced = Reduce(*input, *format, *memory, outputPath.c_str(), width, height);
  input.reset();
  return reduced != nullptr && WriteCopy(*format, outputPath, *reduced);
}

}  // namespace

void ComputePreviewSize(int width, int height, int& previewWidth, int& previewHeight) {
  const double scale = std::sqrt(kPreviewPixels / (static_cast<double>(width) * height));
  previewWidth = static_cast<int>(std::floor(width * scale + 0.5));
  previewHeight = static_cast<int>(std::floor(height * scale + 0.5));
}

bool IsPreviewImage(const std::string& path) {
  CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
  const GDALDatasetUniquePtr image(GDALDataset::FromHandle(GDALOpen(path.c_str(), GA_ReadOnly)));
  if (image == nullptr) return false;
  const double width = image->GetRasterXSize();
  const double height = image->GetRasterYSize();
  // Each side was rounded by half a pixel at most.
  return std::fabs(width * height - kPreviewPixels) <= (width + height) / 2 + 1;
}

int MakePreviewImage(const std::string& inputPath, const std::string& outputPath, std::string* reason) {
  CPLErrorReset();
  if (MakePicture(inputPath, outputPath)) return 1;
  if (reason != nullptr) {
    *reason = CPLGetLastErrorMsg();
    reason->erase(reason->find_last_not_of(" \r\n") + 1);
  }
  return 0;
}
