// mosaicon-tiler: cuts one orthophoto into a tile pyramid for Google Earth and web maps.
//
// Standard output carries progress records only ("Progress 0.37 done"), standard error nothing at all: the
// program that reads them takes few bytes at a time and would hold up one that talks. Everything else goes to
// a log file (run_log.h), whose last line is "RESULT OK" or "RESULT FAILED <reason>". The exit code is 0 only
// after "RESULT OK".
#include <gdal.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "files/one_line.h"
#include "tiler/console.h"
#include "tiler/progress_records.h"
#include "tiler/request.h"
#include "tiler/run_log.h"
#include "tiler/tile_run.h"
#include "tiler/tiler_error.h"

namespace {

constexpr int kFailed = 1;
constexpr int kStopped = 128 + 15;  // as shells tell of a program that was ended

std::atomic<bool> g_stop = false;
static_assert(std::atomic<bool>::is_always_lock_free);  // it is set while a signal is handled

void Stop() {
  g_stop = true;
}

// The exit code.
int Run(const std::vector<std::string>& arguments, tiler::RunLog& log, tiler::ProgressRecords& records) {
  std::string reason;
  int code = kFailed;
  try {
    tiler::RunTiler(tiler::ParseRequest(arguments), log, records, g_stop);
    code = 0;
  } catch (const tiler::Stopped& stopped) {
    reason = stopped.what();
    code = kStopped;
  } catch (const std::bad_alloc&) {
    reason = "the computer has not enough free memory";
  } catch (const tiler::TilerError& error) {
    reason = error.what();
  } catch (const std::exception& error) {
    reason = files::OneLine(std::string("an unexpected error occurred (") + error.what() + ")");
  }
  log.Line(code == 0 ? "RESULT OK" : "RESULT FAILED " + reason);
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  tiler::LoadNothingFromElsewhere();
  const std::vector<std::string> arguments = tiler::Arguments(argc, argv);
  if (const auto information = tiler::Information(arguments)) {
    std::fputs(information->c_str(), stdout);
    return 0;
  }
  tiler::AskNobody();
  tiler::OnStop(Stop);
  tiler::RunLog log;
  const tiler::StandardOutput output(log.Path());
  log.Line("START " + tiler::LocalTime() + " mosaicon-tiler, GDAL " + GDALVersionInfo("RELEASE_NAME") +
           ", arguments " + tiler::ArgumentsWithoutKey(arguments));
  GDALAllRegister();
  int code = 0;
  {
    tiler::ProgressRecords records([&output](const std::string& record) { return output.Write(record); });
    code = Run(arguments, log, records);
  }
  // Nothing that runs at the end of a program may follow the result.
  std::_Exit(code);
}
