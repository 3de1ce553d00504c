// What shows several maps together: a page for browsers and a document for Google Earth, in the folder that
// holds those of the maps. Portable, no state.
#ifndef MOSAICON_TILER_INDEX_PAGE_H_
#define MOSAICON_TILER_INDEX_PAGE_H_

#include <optional>
#include <string>
#include <vector>

#include "tiler/mercator.h"

namespace tiler {

// A map, as its own page describes it. All texts in UTF-8.
struct MapDescription {
  std::string folder;  // its name in the folder of all
  std::string title;
  std::string json;  // an object, without the folder
  Bounds degrees;
  bool hasDocuments = true;  // for Google Earth
};

// page: leaflet.html of that folder. Nothing where it is no page of this program, or none that is read here.
std::optional<MapDescription> DescriptionIn(const std::string& page, const std::string& folder);

// What the titles, which end with "_" and a number each, have in common; without such titles a word for all.
std::string TitleOfAll(const std::vector<MapDescription>& maps);

// index.html. Its folder needs PageFiles() as well.
std::string IndexPage(const std::vector<MapDescription>& maps);
// Whether a page is one of these.
bool IsIndexPage(const std::string& page);

// Leads to the documents of the maps, of this name in each folder. url: put before the folders, not escaped;
// empty, or with a "/" at its end.
std::string IndexKml(const std::vector<MapDescription>& maps, const std::string& document,
                     const std::string& url);

}  // namespace tiler

#endif  // MOSAICON_TILER_INDEX_PAGE_H_
