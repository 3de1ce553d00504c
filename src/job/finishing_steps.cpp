#include "job/finishing_steps.h"

#include <cstdio>

#include "job/kml_links.h"
#include "job/preview_image.h"

bool RealFinishingSteps::RewriteLinks(const std::string& kml, const std::string& baseUrl,
                                      const std::string& subFolder) {
  return RewriteKmlLinks(kml, baseUrl, subFolder) == 1;
}

bool RealFinishingSteps::MakePreview(const std::string& orthophoto, const std::string& picture,
                                     std::string& reason) {
  return MakePreviewImage(orthophoto, picture, &reason) == 1;
}

bool RealFinishingSteps::IsPreview(const std::string& path) {
  return IsPreviewImage(path);
}

// Written beside it first: a full disk leaves the file as it was.
bool RealFinishingSteps::WriteText(const std::string& path, const std::string& text) {
  const std::string partial = path + ".new";
  std::FILE* file = std::fopen(partial.c_str(), "wb");
  if (file == nullptr) return false;
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  if (std::fclose(file) != 0 || !isWritten) {
    std::remove(partial.c_str());
    return false;
  }
  std::remove(path.c_str());
  if (std::rename(partial.c_str(), path.c_str()) == 0) return true;
  std::remove(partial.c_str());
  return false;
}
