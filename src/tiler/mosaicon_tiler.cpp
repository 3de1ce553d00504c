// mosaicon-tiler: cuts one orthophoto into a tile pyramid for Google Earth and web maps.
//
// Standard output carries progress records only ("Progress 0.37 done"), standard error nothing at all: the
// program that reads them takes few bytes at a time and would hold up one that talks. Everything else goes to
// a log file (run_log.h), whose last line is "RESULT OK" or "RESULT FAILED <reason>". The exit code is 0 only
// after "RESULT OK".
#include <fcntl.h>
#include <gdal.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include "tiler/progress_records.h"
#include "tiler/request.h"
#include "tiler/run_log.h"
#include "tiler/tile_run.h"
#include "tiler/tiler_error.h"

namespace {

constexpr int kFailed = 1;
constexpr int kStopped = 128 + SIGTERM;
constexpr GIntBig kCacheBytes = 128 << 20;  // of decoded blocks of the image, for all threads

std::atomic<bool> g_stop = false;
static_assert(std::atomic<bool>::is_always_lock_free);  // it is set while a signal is handled

void Stop(int) {
  g_stop = true;
}

// Gives standard output and standard error to the log: libraries write to them as they like. Returns the
// standard output that was there.
int TakeOutput(const std::filesystem::path& log) {
  const int output = dup(STDOUT_FILENO);
  int file = open(log.c_str(), O_WRONLY | O_APPEND);
  if (file < 0) file = open("/dev/null", O_WRONLY);
  dup2(file, STDOUT_FILENO);
  dup2(file, STDERR_FILENO);
  close(file);
  return output;
}

bool WriteRecord(int output, const std::string& record) {
  return write(output, record.data(), record.size()) == static_cast<ssize_t>(record.size());
}

std::string Now() {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  char text[32] = "";
  if (localtime_r(&now, &local) != nullptr) std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  return text;
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
    reason = tiler::OneLine(std::string("an unexpected error occurred (") + error.what() + ")");
  }
  log.Line(code == 0 ? "RESULT OK" : "RESULT FAILED " + reason);
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  std::signal(SIGTERM, Stop);
  // A reader that has gone, and a file that may not grow, are told by the call that fails.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  tiler::RunLog log;
  const int output = TakeOutput(log.Path());
  log.Line("START " + Now() + " mosaicon-tiler, GDAL " + GDALVersionInfo("RELEASE_NAME") + ", arguments " +
           tiler::ArgumentsWithoutKey(arguments));
  GDALAllRegister();
  GDALSetCacheMax64(kCacheBytes);
  int code = 0;
  {
    tiler::ProgressRecords records(
        [output](const std::string& record) { return WriteRecord(output, record); });
    code = Run(arguments, log, records);
  }
  // Nothing that runs at the end of a program may follow the result.
  _exit(code);
}
