// The engine's command line, taken apart and checked. Portable, no state.
#ifndef MOSAICON_TILER_REQUEST_H_
#define MOSAICON_TILER_REQUEST_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tiler/axis_weights.h"
#include "tiler/tile_kind.h"

namespace tiler {

inline constexpr int kMostThreads = 256;
inline constexpr int kLeastMemory = 128;  // megabytes
inline constexpr int kMostMemory = 1000000;
inline constexpr int kMostShares = 10000;

// Red, green, blue.
using Colour = std::array<std::uint8_t, 3>;

// One of several runs that make a map together.
struct Share {
  int index = 0;  // from 0 to count - 1
  int count = 1;
};

// How pixels of tiles are made.
enum class Sampling {
  kSharp,       // in one step from the image, at exact positions
  kGdal2tiles,  // as gdal2tiles makes them, bit for bit
};

// All texts in UTF-8.
struct Request {
  std::string input;                  // absolute path
  std::string output;                 // absolute path without a separator at its end
  std::optional<Colour> transparent;  // the colour of pixels that show nothing
  std::string srs;                    // empty: the image's own
  std::string title;
  bool kml = false;
  std::string url;  // the folder that doc.kml finds its own folder in; empty: none
  std::string key;  // Google Maps key; empty: none
  int threads = 0;  // 0: as many as there are processors
  int memory = 0;   // megabytes; 0: as the engine thinks best
  Sampling sampling = Sampling::kSharp;
  std::optional<Resampling> resampling;  // of sharp sampling; nothing: as the engine thinks best
  std::optional<TileFormat> tiles;       // nothing: as the environment or the engine thinks best
  // Makes a share of the tiles alone; without it the whole map is made.
  std::optional<Share> share;
  bool merge = false;  // makes what is left when all shares are there; not together with share
};

// What follows the program's name:
//
//     [-a COLOUR] [-s SRS] [-p mercator] [-t TITLE] [-k] [-u URL] [-g KEY] [--threads=N]
//         [--memory=MB] [--shard=I/N | --merge] [--sampling=sharp|gdal2tiles] [--resampling=MODE]
//         [--tiles=png|auto|webp] INPUT OUTPUT
//
// Information() says what they mean. A value may begin with a dash. Throws TilerError when it is not that.
Request ParseRequest(const std::vector<std::string>& arguments);

// Of a value of --resampling. Throws TilerError when it is none.
Resampling ResamplingOf(const std::string& name);

// Of a value of --tiles. Throws TilerError when it is none.
TileFormat TileFormatOf(const std::string& name);

// What the program says instead of working when it is called with --help or --version alone.
std::optional<std::string> Information(const std::vector<std::string>& arguments);

// The arguments as they may be logged: the key is a secret of the user.
std::string ArgumentsWithoutKey(const std::vector<std::string>& arguments);

}  // namespace tiler

#endif  // MOSAICON_TILER_REQUEST_H_
