#include "tiler/index_page.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "tiler/kml_parts.h"
#include "tiler/kml_text.h"
#include "tiler/map_page.h"
#include "tiler/page_template.h"
#include "tiler/pages/map_files.h"

namespace tiler {

namespace {

constexpr std::string_view kBegin = "<script type=\"application/json\" id=\"map-data\">";
constexpr std::string_view kEnd = "</script>";
constexpr std::string_view kIndexMark = "id=\"maps-data\"";
constexpr std::string_view kTitle = "{\"title\": \"";
constexpr std::string_view kNoDocument = "\"kml\": {\"disk\": null";
constexpr std::string_view kBounds = "\"bounds\": ";

// Of a text as it was quoted for a page, up to its end.
std::optional<std::string> Unquoted(std::string_view text) {
  constexpr std::size_t kCode = 6;  // as in \u003c
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') return plain;
    if (text.substr(i).starts_with("\\u00") && i + kCode <= text.size()) {
      plain +=
          static_cast<char>(std::strtol(std::string(text.substr(i + 2, kCode - 2)).c_str(), nullptr, 16));
      i += kCode - 1;
      continue;
    }
    if (text[i] == '\\' && ++i == text.size()) break;
    plain += text[i];
  }
  return std::nullopt;
}

std::optional<Bounds> BoundsIn(const std::string& json) {
  const std::size_t place = json.find(kBounds);
  Bounds degrees;
  if (place == std::string::npos ||
      std::sscanf(json.c_str() + place + kBounds.size(), "[[%lf, %lf], [%lf, %lf]]", &degrees.south,
                  &degrees.west, &degrees.north, &degrees.east) != 4) {
    return std::nullopt;
  }
  return degrees;
}

Bounds AllOf(const std::vector<MapDescription>& maps) {
  Bounds all = maps.empty() ? Bounds() : maps.front().degrees;
  for (const MapDescription& map : maps) {
    all.west = std::min(all.west, map.degrees.west);
    all.south = std::min(all.south, map.degrees.south);
    all.east = std::max(all.east, map.degrees.east);
    all.north = std::max(all.north, map.degrees.north);
  }
  return all;
}

}  // namespace

std::optional<MapDescription> DescriptionIn(const std::string& page, const std::string& folder) {
  const std::size_t begin = page.find(kBegin);
  const std::size_t end = begin == std::string::npos ? begin : page.find(kEnd, begin);
  if (end == std::string::npos) return std::nullopt;
  const std::string json = page.substr(begin + kBegin.size(), end - begin - kBegin.size());
  if (!json.starts_with(kTitle)) return std::nullopt;
  const auto title = Unquoted(std::string_view(json).substr(kTitle.size()));
  const auto degrees = BoundsIn(json);
  if (!title || !degrees) return std::nullopt;
  // The title may say so too, but with other quotes.
  return MapDescription{folder, *title, json, *degrees, json.find(kNoDocument) == std::string::npos};
}

std::string TitleOfAll(const std::vector<MapDescription>& maps) {
  std::string common;
  for (const MapDescription& map : maps) {
    const std::size_t sign = map.title.rfind('_');
    const bool isNumbered = sign != std::string::npos && sign > 0 && sign + 1 < map.title.size() &&
                            map.title.find_first_not_of("0123456789", sign + 1) == std::string::npos;
    const std::string own = isNumbered ? map.title.substr(0, sign) : "";
    if (own.empty() || (!common.empty() && own != common)) return "Maps";
    common = own;
  }
  return common.empty() ? "Maps" : common;
}

std::string IndexPage(const std::vector<MapDescription>& maps) {
  std::string all;
  for (const MapDescription& map : maps) {
    if (!all.empty()) all += ",\n";
    all += "{\"folder\": ";
    all += QuotedForPage(map.folder);
    all += ", ";
    all += map.json.substr(1);
  }
  return FilledIn(kPage,
                  {{"TITLE", XmlEscaped(TitleOfAll(maps))}, {"KIND", "maps"}, {"DATA", "[" + all + "]"}});
}

bool IsIndexPage(const std::string& page) {
  return page.find(kIndexMark) != std::string::npos;
}

std::string IndexKml(const std::vector<MapDescription>& maps, const std::string& document,
                     const std::string& url) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
      "<kml xmlns=\"http://www.opengis.net/kml/2.2\">\n"
      "  <Document>\n"
      "    <name>" +
      XmlEscaped(TitleOfAll(maps)) + "</name>\n" + LookFromAbove(AllOf(maps));
  for (const MapDescription& map : maps) {
    if (!map.hasDocuments) continue;
    std::string address = url;
    address.append(map.folder).append("/").append(document);
    text.append("    <NetworkLink>\n      <name>").append(XmlEscaped(map.title));
    text.append("</name>\n      <Link>\n        <href>").append(XmlEscaped(address));
    text.append("</href>\n      </Link>\n    </NetworkLink>\n");
  }
  return text + "  </Document>\n</kml>\n";
}

}  // namespace tiler
