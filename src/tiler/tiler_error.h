// What ends a run of the engine.
#ifndef MOSAICON_TILER_TILER_ERROR_H_
#define MOSAICON_TILER_TILER_ERROR_H_

#include <stdexcept>
#include <string>

namespace tiler {

// A failure. Its text is the sentence for the user: one line of UTF-8, never empty, the beginning in small
// letters and without a full stop.
class TilerError : public std::runtime_error {
 public:
  explicit TilerError(const std::string& sentence);
};

// When GDAL gives up and no better is known.
inline constexpr const char* kNotRead = "the image could not be read or tiled";

// Pixels of the image could not be read.
class NotRead : public TilerError {
 public:
  using TilerError::TilerError;
};

// The run was asked to end before it was complete.
class Stopped : public TilerError {
 public:
  Stopped();
};

}  // namespace tiler

#endif  // MOSAICON_TILER_TILER_ERROR_H_
