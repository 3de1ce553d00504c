// Finds out what became of the map of each orthophoto of a job: runs the tools and looks at what they made.
// The job's log does not know that: it calls every finished run OK, whatever the tools did. Of each map the
// first thing that goes wrong counts. Portable, the thread that runs the job.
#ifndef MOSAICON_JOB_MAP_AUDIT_H_
#define MOSAICON_JOB_MAP_AUDIT_H_

#include <string>
#include <vector>

#include "files/file_system.h"
#include "job/job_host.h"
#include "job/map_outcome.h"
#include "job/tif_data.h"
#include "job/tool_runner.h"

class MapAudit {
 public:
  // All three must outlive the audit; each call of them may come too late, so they are guarded ones.
  MapAudit(ToolRunner& runner, FileSystem& files, const JobHost& host)
      : m_runner(runner), m_files(files), m_host(host) {}

  // A job begins: nothing is made yet.
  void StartJob(const std::vector<CTifData>& orthophotos);
  // All that follows is about the orthophoto with this index.
  void StartMap(size_t index) { m_nMap = index; }

  // Runs a tool and judges it. Unless something goes wrong from here on, the map is complete.
  void Run(const ToolRun& run);
  // Something else went wrong that a complete map needs.
  void Fail(const std::string& problem);
  // It is not made, or not to its end, for this reason.
  void LeaveOut(const std::string& reason);
  // The user wants to keep what is there.
  void Keep();

  // One for each orthophoto of the job, in its order.
  const std::vector<MapOutcome>& Maps() const { return m_vMaps; }

 private:
  ToolRunner& m_runner;
  FileSystem& m_files;
  const JobHost& m_host;
  std::vector<MapOutcome> m_vMaps;
  size_t m_nMap = 0;
};

#endif  // MOSAICON_JOB_MAP_AUDIT_H_
