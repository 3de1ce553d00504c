// A whole run of the engine, from the request to the last page.
#ifndef MOSAICON_TILER_TILE_RUN_H_
#define MOSAICON_TILER_TILE_RUN_H_

#include <atomic>

#include "tiler/request.h"

namespace tiler {

class ProgressRecords;
class RunLog;

// Makes the pyramid of an image and the pages that show it, which come last: a run that fails or is killed
// before leaves no document whose links lead nowhere. Or a share of the pyramid, without pages; or, when all
// shares are there, the tiles that none of them made, and the pages. Throws TilerError, Stopped among them
// soon after stop becomes true, or std::bad_alloc; no partial file is left then.
void RunTiler(const Request& request, RunLog& log, ProgressRecords& records, const std::atomic<bool>& stop);

}  // namespace tiler

#endif  // MOSAICON_TILER_TILE_RUN_H_
