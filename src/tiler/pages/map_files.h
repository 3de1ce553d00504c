// The texts of the map page, as the build takes them from the folder map and from the distribution's Leaflet.
#ifndef MOSAICON_TILER_PAGES_MAP_FILES_H_
#define MOSAICON_TILER_PAGES_MAP_FILES_H_

#include <string_view>

namespace tiler {

extern const std::string_view kPage;
extern const std::string_view kMapStyles;
extern const std::string_view kMapScript;
extern const std::string_view kPositionScript;
extern const std::string_view kTilesScript;
extern const std::string_view kToolsScript;
extern const std::string_view kLeafletStyles;
extern const std::string_view kLeafletScript;
extern const std::string_view kLeafletLicence;

}  // namespace tiler

#endif  // MOSAICON_TILER_PAGES_MAP_FILES_H_
