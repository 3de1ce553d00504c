#include "tiler/image_files.h"

#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <set>
#include <system_error>
#include <vector>

#include "files/path_text.h"

namespace tiler {

namespace {

// Virtual rasters of virtual rasters are looked into so far.
constexpr int kMostDepth = 8;

std::vector<std::string> FilesOf(GDALDataset& dataset) {
  const CPLStringList list(dataset.GetFileList());
  return {list.List(), list.List() + list.size()};
}

// Whether it belongs to another file, as overviews, masks and statistics do.
bool IsBeside(const std::string& name) {
  return std::ranges::any_of(std::array{".ovr", ".msk", ".aux.xml"},
                             [&](const char* end) { return name.ends_with(end); });
}

// The images that a virtual one is made of, as far as they open.
std::vector<std::string> PartsOf(GDALDataset& dataset) {
  std::vector<std::string> parts = FilesOf(dataset);
  std::erase_if(parts,
                [&](const std::string& name) { return name == dataset.GetDescription() || IsBeside(name); });
  return parts;
}

GDALDatasetUniquePtr Open(const std::string& name) {
  return GDALDatasetUniquePtr(GDALDataset::Open(name.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY));
}

// Of a file that tells nothing of itself: never the same, so that nothing is taken for unchanged.
std::string UnknownState() {
  static int count = 0;
  return "unknown " + std::to_string(++count) + " " +
         std::to_string(std::chrono::system_clock::now().time_since_epoch().count());
}

// As exactly as the system tells it.
std::string TimeOf(const std::string& name, const VSIStatBufL& status) {
  std::error_code failed;  // it may lie in an archive
  const auto time = std::filesystem::last_write_time(files::PathOf(name), failed);
  return std::to_string(failed ? status.st_mtime : time.time_since_epoch().count());
}

// What changes when the file does. A small one may have been written again as it was: a job makes its virtual
// rasters anew each time.
std::string StateOf(const std::string& name) {
  constexpr vsi_l_offset kSmall = 1 << 20;
  VSIStatBufL status = {};
  if (VSIStatL(name.c_str(), &status) != 0) return UnknownState();
  if (static_cast<vsi_l_offset>(status.st_size) > kSmall) {
    return std::to_string(status.st_size) + " " + TimeOf(name, status);
  }
  GByte* bytes = nullptr;
  vsi_l_offset size = 0;
  if (VSIIngestFile(nullptr, name.c_str(), &bytes, &size, -1) == FALSE) return UnknownState();
  std::string content(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
  VSIFree(bytes);
  return content;
}

// Each file once, in the order in which they are found.
void AddState(GDALDataset& dataset, int depth, std::set<std::string>& seen, std::string& state) {
  for (const std::string& name : FilesOf(dataset)) {
    if (seen.insert(name).second) state += name + " " + StateOf(name) + "\n";
  }
  if (!IsVirtual(dataset)) return;
  if (depth == kMostDepth) state += UnknownState();
  for (const std::string& name : PartsOf(dataset)) {
    const GDALDatasetUniquePtr part = depth < kMostDepth ? Open(name) : nullptr;
    if (part) AddState(*part, depth + 1, seen, state);
  }
}

void AddFilesOfPixels(const std::string& path, int depth, std::vector<std::string>& files) {
  const GDALDatasetUniquePtr image = Open(path);
  if (!image) return;
  if (!IsVirtual(*image) || depth == kMostDepth) {
    files.push_back(path);
    return;
  }
  for (const std::string& part : PartsOf(*image)) AddFilesOfPixels(part, depth + 1, files);
}

SourceLayout OwnLayoutOf(GDALDataset& dataset) {
  const int bytes = GDALGetDataTypeSizeBytes(dataset.GetRasterBand(1)->GetRasterDataType());
  SourceLayout layout = {dataset.GetRasterXSize(),
                         std::int64_t{dataset.GetRasterXSize()} * dataset.GetRasterCount() * bytes, 0, 0};
  dataset.GetRasterBand(1)->GetBlockSize(&layout.blockWidth, &layout.blockHeight);
  return layout;
}

// A virtual raster lies as the files lie that it is made of, the first of them for many.
SourceLayout LayoutWithin(GDALDataset& dataset, int depth) {
  if (!IsVirtual(dataset) || depth == kMostDepth) return OwnLayoutOf(dataset);
  for (const std::string& name : PartsOf(dataset)) {
    const GDALDatasetUniquePtr part = Open(name);
    if (part && part->GetRasterCount() > 0) return LayoutWithin(*part, depth + 1);
  }
  return OwnLayoutOf(dataset);
}

}  // namespace

bool IsVirtual(GDALDataset& dataset) {
  return EQUAL(dataset.GetDriverName(), "VRT");
}

SourceLayout LayoutOf(GDALDataset& dataset) {
  const SourceLayout within = LayoutWithin(dataset, 0);
  SourceLayout layout = OwnLayoutOf(dataset);
  // Of parts side by side the strips are needed from the first to the last.
  layout.blockWidth = within.IsStriped() ? layout.width : std::min(within.blockWidth, layout.width - 1);
  layout.blockHeight = within.blockHeight;
  return layout;
}

std::vector<std::string> FilesOfPixels(const std::string& path) {
  std::vector<std::string> files;
  AddFilesOfPixels(path, 0, files);
  return files;
}

std::string StateOf(GDALDataset& dataset) {
  std::string state;
  std::set<std::string> seen;
  AddState(dataset, 0, seen, state);
  return state;
}

}  // namespace tiler
