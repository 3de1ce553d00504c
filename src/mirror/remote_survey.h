// Looks at everything in a folder on a server: one listing for each folder, links not followed. One thread.
#ifndef MOSAICON_MIRROR_REMOTE_SURVEY_H_
#define MOSAICON_MIRROR_REMOTE_SURVEY_H_

#include <map>
#include <set>
#include <string>

#include "mirror/publish_plan.h"
#include "mirror/remote_jobs.h"

namespace mirror {

class RemoteSurvey {
 public:
  // jobs must outlive it.
  explicit RemoteSurvey(RemoteJobs& jobs) : m_jobs(jobs) {}

  // makeRoot: whether the folder itself is made when it is not there. kHopeless: see Reason.
  Ending Look(bool makeRoot);
  // These folders once more; what was known of them is forgotten.
  Ending LookAgain(const std::set<std::string>& folders);

  const RemoteTree& Tree() const { return m_tree; }
  // Folders that the server did not list, with what it said.
  const std::map<std::string, std::string>& Refusals() const { return m_refusals; }
  // Empty unless the folder itself can be neither read nor made, or holds more than any map.
  const std::string& Reason() const { return m_reason; }

 private:
  void List(const std::string& folder, bool andBelow);
  void Take(const std::string& folder, bool andBelow, const FinishedJob& finished);
  Ending MakeRoot(const Outcome& listed);

  RemoteJobs& m_jobs;
  RemoteTree m_tree;
  std::map<std::string, std::string> m_refusals;
  std::string m_reason;
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_REMOTE_SURVEY_H_
