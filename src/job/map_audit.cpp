#include "job/map_audit.h"

namespace {

// Tells a file that was written anew from one that an earlier job left.
class FreshFile {
 public:
  FreshFile(FileSystem& files, const std::string& path)
      : m_files(files), m_strPath(path), m_before(files.WriteTime(path)) {}
  bool WasWritten() const {
    const auto now = m_files.WriteTime(m_strPath);
    return now && now != m_before;
  }

 private:
  FileSystem& m_files;
  const std::string m_strPath;
  const std::optional<uint64_t> m_before;
};

}  // namespace

void MapAudit::StartJob(const std::vector<CTifData>& orthophotos) {
  m_vMaps.clear();
  for (const CTifData& data : orthophotos)
    m_vMaps.push_back({data.m_strFileName, MapState::kLeftOut, "", {}});
}

void MapAudit::Run(const ToolRun& run) {
  MapOutcome& map = m_vMaps[m_nMap];
  if (map.state == MapState::kLeftOut && map.problem.empty()) map.state = MapState::kComplete;

  const FreshFile product(m_files, ProductOf(run));
  ToolOutcome outcome = m_runner.Run(run);
  outcome.madeProduct = product.WasWritten();
  const std::string problem = FindProblem(run, outcome);
  if (problem.empty() || map.state != MapState::kComplete) return;
  if (m_host.IsAborted()) {
    LeaveOut("the job was aborted");
    return;
  }
  Fail(problem);
  // Whoever told a reason has ended with the exit code that says so.
  if (outcome.lastWords.empty() && outcome.exitCode.value_or(0) != 0) map.exitCode = outcome.exitCode;
}

void MapAudit::Fail(const std::string& problem) {
  MapOutcome& map = m_vMaps[m_nMap];
  if (map.state != MapState::kComplete) return;
  map.state = MapState::kFailed;
  map.problem = problem;
}

void MapAudit::LeaveOut(const std::string& reason) {
  MapOutcome& map = m_vMaps[m_nMap];
  if (map.state == MapState::kFailed) return;
  map.state = MapState::kLeftOut;
  map.problem = reason;
}

void MapAudit::Keep() {
  m_vMaps[m_nMap].state = MapState::kKept;
}
