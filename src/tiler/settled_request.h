// What a run does where its command line says nothing.
#ifndef MOSAICON_TILER_SETTLED_REQUEST_H_
#define MOSAICON_TILER_SETTLED_REQUEST_H_

#include "tiler/request.h"

namespace tiler {

class RunLog;

// The request with threads, resampling and tiles: from the variables MOSAICON_TILER_PROCESSES, _RESAMPLING
// and _TILES, for who cannot change the command line, else as the engine thinks best. Documents are not asked
// for where they could show nothing. Throws TilerError.
Request Settled(Request request, RunLog& log);

}  // namespace tiler

#endif  // MOSAICON_TILER_SETTLED_REQUEST_H_
