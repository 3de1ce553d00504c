#include "tiler/request.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <map>
#include <utility>

#include "files/path_text.h"
#include "tiler/tiler_error.h"
#include "version.h"

namespace tiler {

namespace {

constexpr unsigned kWhite = 0xFFFFFF;
constexpr std::string_view kWithValue = "asptug";
constexpr std::string_view kWithoutValue = "k";
constexpr const char* kThreads = "--threads";
constexpr const char* kMemory = "--memory";
constexpr const char* kShard = "--shard";
constexpr const char* kMerge = "--merge";
constexpr const char* kSampling = "--sampling";
constexpr const char* kResampling = "--resampling";
constexpr const char* kTiles = "--tiles";
constexpr std::array<const char*, 6> kLong = {kThreads, kMemory, kShard, kSampling, kResampling, kTiles};

constexpr std::array<std::pair<const char*, Sampling>, 2> kSamplings = {
    {{"sharp", Sampling::kSharp}, {"gdal2tiles", Sampling::kGdal2tiles}}};
constexpr std::array<std::pair<const char*, TileFormat>, 3> kFormats = {
    {{NameOf(TileFormat::kPng), TileFormat::kPng},
     {NameOf(TileFormat::kAuto), TileFormat::kAuto},
     {NameOf(TileFormat::kWebp), TileFormat::kWebp}}};
constexpr std::array<std::pair<const char*, Resampling>, 7> kResamplings = {
    {{"average", Resampling::kAverage},
     {"near", Resampling::kNearest},
     {"bilinear", Resampling::kBilinear},
     {"cubic", Resampling::kCubic},
     {"cubicspline", Resampling::kCubicSpline},
     {"lanczos", Resampling::kLanczos},
     {"antialias", Resampling::kLanczos}}};

constexpr const char* kHelp =
    R"(mosaicon-tiler cuts an orthophoto into a pyramid of tiles for web maps and
Google Earth.

  mosaicon-tiler [OPTION...] IMAGE FOLDER

IMAGE is any georeferenced raster of 8 bits that GDAL opens, FOLDER the folder
that the map is to be in.

  -s SRS         coordinate system of the image, as EPSG:32632 is one; its own
                 by default
  -a COLOUR      transparent colour as one number: red + 256 * green + 65536 *
                 blue
  -t TITLE       title of the pages; the name of the image by default
  -k             KML documents for Google Earth
  -u URL         address of the folder that FOLDER is to be found in
  -g KEY         key for the page with Google Maps
  -p mercator    the profile; there is no other
  --threads=N    how many tiles are made at a time; as many as there are
                 processors by default
  --memory=MB    about how many megabytes to take; 460 by default, and 24 for
                 each thread
  --shard=I/N    makes share I of N alone, counted from 0: N runs with the same
                 image, options and folder, on as many computers as one likes,
                 make the tiles together
  --merge        makes the rest of the map when all shares are there, with the
                 same image, options and folder
  --sampling=HOW how pixels are made: sharp, in one step from the image, at their
                 exact places (the default), or gdal2tiles, as that makes them
  --resampling=MODE
                 of sharp sampling: average (the default), near, bilinear,
                 cubic, cubicspline, lanczos or antialias
  --tiles=WHAT   png: exact (the default); auto: JPEG where nothing is transparent
                 and PNG elsewhere, a fifth as large; webp: smaller still, for web
                 pages alone, without KML; the last two of sharp sampling
  --version      what this program is
  --help         this

Standard output gets the progress, as "Progress 0.37 done". Everything else
goes to a log: the file that MOSAICON_TILER_LOG names, else gdal2tiles.log in
%LOCALAPPDATA%\Mosaicon\Logs or in ~/.local/state/mosaicon. Its last line is
"RESULT OK", or "RESULT FAILED" and the reason; the exit code is 0, or 1, or 143
when the run was asked to end. A run that was ended goes on where it was when it
is started again with the same image and options.
)";

[[noreturn]] void NotUnderstood(const std::string& why) {
  throw TilerError("the command line was not understood: " + why);
}

std::string Quoted(const std::string& text) {
  const char* mark = text.find('\'') != std::string::npos && text.find('"') == std::string::npos ? "\"" : "'";
  return mark + text + mark;
}

// A decimal number of digits alone, up to the largest.
std::optional<unsigned> NumberUpTo(unsigned largest, std::string_view text) {
  unsigned number = 0;
  const char* end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end || number > largest) return std::nullopt;
  return number;
}

Colour UnpackColour(const std::string& text) {
  const auto packed = NumberUpTo(kWhite, text);
  if (!packed) {
    throw TilerError("the transparent colour " + Quoted(text) + " is not a number from 0 to " +
                     std::to_string(kWhite));
  }
  return {static_cast<std::uint8_t>(*packed & 255), static_cast<std::uint8_t>(*packed >> 8 & 255),
          static_cast<std::uint8_t>(*packed >> 16)};
}

int ThreadCount(const std::string& text) {
  const auto count = NumberUpTo(unsigned{kMostThreads}, text);
  if (!count || *count == 0) {
    throw TilerError("the number of threads " + Quoted(text) + " is not a number from 1 to " +
                     std::to_string(kMostThreads));
  }
  return static_cast<int>(*count);
}

int Megabytes(const std::string& text) {
  const auto count = NumberUpTo(unsigned{kMostMemory}, text);
  if (!count || *count < unsigned{kLeastMemory}) {
    throw TilerError("the memory " + Quoted(text) + " is not a number of megabytes from " +
                     std::to_string(kLeastMemory) + " to " + std::to_string(kMostMemory));
  }
  return static_cast<int>(*count);
}

Share ShareOf(const std::string& text) {
  const std::size_t sign = text.find('/');
  const auto index = NumberUpTo(unsigned{kMostShares}, text.substr(0, sign));
  const auto count =
      sign == std::string::npos ? std::nullopt : NumberUpTo(unsigned{kMostShares}, text.substr(sign + 1));
  if (!index || !count || *index >= *count) {
    throw TilerError("the share " + Quoted(text) + " is not I/N, with N from 1 to " +
                     std::to_string(kMostShares) + " and I from 0 to N - 1");
  }
  return {static_cast<int>(*index), static_cast<int>(*count)};
}

// By its name in one of the tables above. what: the option's value, in words.
template <typename Named>
auto Chosen(const std::string& text, const Named& choices, const std::string& what) {
  std::string names;
  for (const auto& [name, value] : choices) {
    if (text == name) return value;
    names += (names.empty() ? "" : ", ") + std::string(name);
  }
  throw TilerError(what + " " + Quoted(text) + " is none of " + names);
}

// Options by their name, short ones by their letter; of one that is given twice, the last. A value may begin
// with a dash: a title that does is still a title.
class Options {
 public:
  explicit Options(const std::vector<std::string>& arguments) {
    auto next = arguments.begin();
    for (; next != arguments.end() && next->size() > 1 && next->front() == '-'; ++next) {
      if (*next == "--") {
        ++next;
        break;
      }
      const bool isLong = next->starts_with("--");
      next = isLong ? TakeLong(next, arguments.end()) : TakeShort(next, arguments.end());
    }
    m_names.assign(next, arguments.end());
  }

  bool Has(const std::string& name) const { return m_values.contains(name); }
  std::string Value(const std::string& name, const std::string& missing = "") const {
    const auto found = m_values.find(name);
    return found == m_values.end() ? missing : found->second;
  }
  // What follows the options.
  const std::vector<std::string>& Names() const { return m_names; }

 private:
  using Argument = std::vector<std::string>::const_iterator;

  // Both return the last argument that belongs to the option.
  Argument TakeShort(Argument argument, Argument end) {
    for (std::size_t i = 1; i < argument->size(); ++i) {
      const std::string letter(1, (*argument)[i]);
      if (kWithoutValue.find(letter) != std::string_view::npos) {
        m_values[letter] = "";
        continue;
      }
      if (kWithValue.find(letter) == std::string_view::npos) {
        NotUnderstood("option -" + letter + " not recognized");
      }
      if (i + 1 < argument->size()) {
        m_values[letter] = argument->substr(i + 1);
        return argument;
      }
      if (++argument == end) NotUnderstood("option -" + letter + " requires argument");
      m_values[letter] = *argument;
      return argument;
    }
    return argument;
  }

  Argument TakeLong(Argument argument, Argument end) {
    const std::size_t sign = argument->find('=');
    const std::string name = argument->substr(0, sign);
    if (name == kMerge) {
      if (sign != std::string::npos) NotUnderstood("option " + name + " must not have an argument");
      m_values[name] = "";
      return argument;
    }
    if (std::find(kLong.begin(), kLong.end(), name) == kLong.end())
      NotUnderstood("option " + name + " not recognized");
    if (sign == std::string::npos && ++argument == end)
      NotUnderstood("option " + name + " requires argument");
    m_values[name] = sign == std::string::npos ? *argument : argument->substr(sign + 1);
    return argument;
  }

  std::map<std::string, std::string, std::less<>> m_values;
  std::vector<std::string> m_names;
};

// Also of a name that begins with a dash, which nobody can take for an option then.
std::string Absolute(const std::string& name) {
  std::filesystem::path path = std::filesystem::absolute(files::PathOf(name)).lexically_normal();
  if (!path.has_filename() && path.has_relative_path()) path = path.parent_path();
  return files::Utf8Of(path);
}

// Where the value of -g begins, which is the argument's length when the next one holds it; npos: nowhere.
std::size_t PlaceOfKey(const std::string& argument) {
  if (!argument.starts_with('-')) return std::string::npos;
  const std::size_t letter = argument.find_first_not_of(kWithoutValue, 1);
  return letter != std::string::npos && argument[letter] == 'g' ? letter + 1 : std::string::npos;
}

}  // namespace

Request ParseRequest(const std::vector<std::string>& arguments) {
  const Options options(arguments);
  const std::vector<std::string>& names = options.Names();
  if (names.size() != 2 || names[0].empty() || names[1].empty()) {
    throw TilerError("the command line must end with the image and the output folder");
  }
  if (options.Value("p", "mercator") != "mercator") {
    throw TilerError("only tiles of the profile mercator can be made");
  }
  Request request;
  request.input = Absolute(names[0]);
  request.output = Absolute(names[1]);
  if (options.Has("a")) request.transparent = UnpackColour(options.Value("a"));
  request.srs = options.Value("s");
  request.title = options.Value("t");
  if (request.title.empty()) request.title = files::Utf8Of(files::PathOf(names[0]).filename());
  request.kml = options.Has("k");
  request.url = options.Value("u");
  request.key = options.Value("g");
  if (options.Has(kThreads)) request.threads = ThreadCount(options.Value(kThreads));
  if (options.Has(kMemory)) request.memory = Megabytes(options.Value(kMemory));
  if (options.Has(kShard)) request.share = ShareOf(options.Value(kShard));
  if (options.Has(kSampling)) {
    request.sampling = Chosen(options.Value(kSampling), kSamplings, "the sampling");
  }
  if (options.Has(kResampling)) request.resampling = ResamplingOf(options.Value(kResampling));
  if (options.Has(kTiles)) request.tiles = TileFormatOf(options.Value(kTiles));
  if (request.tiles.value_or(TileFormat::kPng) != TileFormat::kPng && request.sampling != Sampling::kSharp) {
    throw TilerError("tiles as gdal2tiles makes them are PNG alone");
  }
  request.merge = options.Has(kMerge);
  if (request.share && request.merge) {
    throw TilerError("a run makes either a share or what is left when all shares are there");
  }
  return request;
}

Resampling ResamplingOf(const std::string& name) {
  return Chosen(name, kResamplings, "the resampling");
}

TileFormat TileFormatOf(const std::string& name) {
  return Chosen(name, kFormats, "the kind of tiles");
}

std::optional<std::string> Information(const std::vector<std::string>& arguments) {
  if (arguments == std::vector<std::string>{"--version"}) return "mosaicon-tiler " MOSAICON_VERSION "\n";
  if (arguments == std::vector<std::string>{"--help"}) return kHelp;
  return std::nullopt;
}

std::string ArgumentsWithoutKey(const std::vector<std::string>& arguments) {
  std::string shown;
  bool hide = false;
  for (const std::string& argument : arguments) {
    if (!shown.empty()) shown += ", ";
    const std::size_t key = hide ? 0 : PlaceOfKey(argument);
    hide = !hide && key == argument.size();
    shown += Quoted(key == std::string::npos || hide ? argument : argument.substr(0, key) + "***");
  }
  return "[" + shown + "]";
}

}  // namespace tiler
