#include "job/finishing_steps.h"

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
