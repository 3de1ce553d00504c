// Where the parts of the progress bar lie: the filled rectangle, the blocks and the text. A horizontal
// bar grows to the right, a vertical one upwards. Coordinates are pixels; a rectangle's right and bottom
// edges are outside of it. Portable.
//
// A fraction outside 0 to 1 counts as the nearer end, since nothing can be seen beyond it.
#ifndef MOSAICON_PROGRESS_BAR_GEOMETRY_H_
#define MOSAICON_PROGRESS_BAR_GEOMETRY_H_

#include <vector>

struct BarRect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  bool operator==(const BarRect&) const = default;
};

struct BarPoint {
  int x = 0;
  int y = 0;
  bool operator==(const BarPoint&) const = default;
};

enum class BarDirection { kHorizontal, kVertical };

// The part of client that is done.
BarRect FilledRect(const BarRect& client, BarDirection direction, double fraction);

// How many of the 18 blocks are painted: each one a little before its end is reached.
int BlockCount(double fraction);

// The painted blocks, in the order in which they appear. The last one may reach beyond client.
std::vector<BarRect> BlockRects(const BarRect& client, BarDirection direction, double fraction);

// Where text that runs upwards starts so that it is in the middle. length and height are the text's own,
// as if it were not rotated.
BarPoint VerticalTextOrigin(const BarRect& client, int length, int height);

#endif  // MOSAICON_PROGRESS_BAR_GEOMETRY_H_
