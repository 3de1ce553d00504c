#include "batch/arguments.h"

#include <algorithm>
#include <charconv>
#include <map>

#include "batch/option_words.h"
#include "job/job_settings.h"

namespace {

std::string ReadTransparency(const std::string& value, uint32_t& colour) {
  uint32_t rgb = 0;
  const char* end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, rgb, 16);
  if (value.size() != 6 || error != std::errc() || stop != end) {
    return "--transparency needs six hexadecimal digits RRGGBB, not \"" + value + "\"";
  }
  colour = (rgb >> 16) | (rgb & 0xFF00) | (rgb & 0xFF) << 16;
  return "";
}

std::string ReadResampling(const std::string& value, int& index) {
  const std::vector<std::string>& modes = ResamplingModes();
  const auto found = std::find(modes.begin(), modes.end(), value);
  if (found == modes.end()) {
    std::string names;
    for (const std::string& mode : modes) names += (names.empty() ? "" : ", ") + mode;
    return "--resampling knows " + names + ", not \"" + value + "\"";
  }
  index = static_cast<int>(found - modes.begin());
  return "";
}

std::string ReadTiles(const std::string& value, tiler::TileFormat& tiles) {
  for (const auto format : {tiler::TileFormat::kPng, tiler::TileFormat::kAuto, tiler::TileFormat::kWebp}) {
    if (value != NameOf(format)) continue;
    tiles = format;
    return "";
  }
  return "--tiles knows png, auto, webp, not \"" + value + "\"";
}

std::string ReadOverwrite(const std::string& value, std::optional<bool>& overwrite) {
  if (value != "yes" && value != "no") return "--overwrite needs yes or no, not \"" + value + "\"";
  overwrite = value == "yes";
  return "";
}

std::string ReadTitle(const std::string& value, std::string& title) {
  title = value;
  const std::string problem = FindTitleProblem(value);
  return problem.empty() ? "" : "--title " + problem;
}

std::string ReadGoogleKey(const std::string& value, std::string& key) {
  key = value;
  const std::string problem = FindGoogleKeyProblem(value);
  return problem.empty() ? "" : "--google-key " + problem;
}

std::string ReadUrl(const std::string& value, std::optional<std::string>& url) {
  if (value.empty()) return "--url needs an address";
  // It is written into XML as it stands.
  if (HasAnyOf(value, " \"<>&")) return "--url must not contain blanks, quotes, angle brackets or &";
  url = value;
  return "";
}

std::map<std::string, ValueReader> ValueReaders(BatchArguments& arguments) {
  return {
      {"--title", [&](const std::string& value) { return ReadTitle(value, arguments.title); }},
      {"--target",
       [&](const std::string& value) {
         arguments.target = value;
         return std::string();
       }},
      {"--url", [&](const std::string& value) { return ReadUrl(value, arguments.url); }},
      {"--google-key", [&](const std::string& value) { return ReadGoogleKey(value, arguments.googleKey); }},
      {"--transparency",
       [&](const std::string& value) { return ReadTransparency(value, arguments.transparency); }},
      {"--resampling", [&](const std::string& value) { return ReadResampling(value, arguments.resampling); }},
      {"--tiles", [&](const std::string& value) { return ReadTiles(value, arguments.tiles); }},
      {"--overwrite", [&](const std::string& value) { return ReadOverwrite(value, arguments.overwrite); }},
  };
}

std::map<std::string, bool*> Switches(BatchArguments& arguments) {
  return {{"--quiet", &arguments.quiet}, {"--help", &arguments.help}, {"--version", &arguments.version}};
}

// What is wrong with the arguments as a whole.
std::string CheckComplete(const BatchArguments& arguments) {
  if (arguments.help || arguments.version) return "";
  if (arguments.inputs.empty()) return "no orthophoto or folder is given";
  if (arguments.target.empty()) return "--target is missing: name the folder for the result";
  return "";
}

}  // namespace

std::string ParseBatchArguments(const std::vector<std::string>& words, BatchArguments& arguments) {
  const auto readers = ValueReaders(arguments);
  const auto switches = Switches(arguments);
  const std::string problem =
      ReadOptionWords(words, readers, switches, "an input is an empty text", arguments.inputs);
  return problem.empty() ? CheckComplete(arguments) : problem;
}

std::string BatchHelp() {
  return "Usage: mosaicon-batch [OPTION...] --target FOLDER ORTHOPHOTO|FOLDER...\n"
         "\n"
         "Turns georeferenced orthophotos into tile pyramids for Google Earth and the web.\n"
         "A folder stands for all *.tif files in it. Several orthophotos go into the\n"
         "folders tile_0, tile_1 ... of the target folder.\n"
         "\n"
         "  --target FOLDER        where the result goes; its parent folder must exist\n"
         "  --title TEXT           title of the maps\n"
         "  --url URL              web address of the target folder: adds googleearth_web.kml\n"
         "  --google-key KEY       Google API key: keeps googlemaps.html\n"
         "  --transparency RRGGBB  colour that becomes transparent (default 000000, black)\n"
         "  --resampling MODE      average, near, bilinear, cubic, cubicspline, lanczos or\n"
         "                         antialias (default average)\n"
         "  --tiles png|auto|webp  png is exact (default); auto makes JPEG where nothing is\n"
         "                         transparent, which is much smaller; webp is smaller still,\n"
         "                         but for web pages alone: it comes without KML\n"
         "  --overwrite yes|no     write into folders that are not empty; without it the\n"
         "                         program asks on a terminal, and does not overwrite elsewhere\n"
         "  --quiet                print nothing but problems\n"
         "  --help, --version\n"
         "\n"
         "mosaicon-batch --publish ADDRESS FOLDER... publishes what was made; the option\n"
         "--help behind that tells more.\n"
         "\n"
         "Exit codes: 0 all done, 1 some orthophoto failed or was skipped, 2 wrong arguments,\n"
         "3 tools or target folder missing, 130 aborted.\n";
}
