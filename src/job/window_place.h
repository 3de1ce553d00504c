// Where a window stood when it was closed, and where its user was browsing: kept in the profile, and
// used at the next start as far as the screens still allow. Portable.
#ifndef MOSAICON_JOB_WINDOW_PLACE_H_
#define MOSAICON_JOB_WINDOW_PLACE_H_

#include <optional>
#include <string>

// Screen coordinates, in pixels.
struct ScreenPoint {
  int x = 0;
  int y = 0;
};

struct ScreenRectangle {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
};

// nullopt when nothing usable was stored.
std::optional<ScreenPoint> LoadWindowPlace();
void SaveWindowPlace(const ScreenPoint& topLeft);

// The folder that was browsed last; empty when nothing was stored.
std::string LoadLastFolder();
void SaveLastFolder(const std::string& folder);

// The place nearest to topLeft at which a window of this size stands inside the work area of its
// screen; the upper left corner when the window is larger than that.
ScreenPoint FitIntoWorkArea(const ScreenPoint& topLeft, int width, int height,
                            const ScreenRectangle& workArea);

#endif  // MOSAICON_JOB_WINDOW_PLACE_H_
