// The folder of reports. Where a report lies tells how far it is:
//   <folder>\<name>.unfinished   being written; left behind when the sender was killed meanwhile
//   <folder>\<name>              complete; the user was not asked yet, or declined
//   <folder>\pending\<name>      the user agreed to send it; not delivered yet
//   <folder>\sent\<name>         delivered
// A report goes from one place to the next by one renaming. Those beyond the newest are deleted. Win32.
#ifndef MOSAICON_CRASHRPT_REPORT_STORE_H_
#define MOSAICON_CRASHRPT_REPORT_STORE_H_

#include <string>
#include <vector>

#include "handles/unique_handle.h"

inline constexpr size_t kKeptReports = 20;

class ReportStore {
 public:
  explicit ReportStore(const std::string& folder) : m_strFolder(folder) {}

  const std::string& Folder() const { return m_strFolder; }
  std::string UnfinishedPath(const std::string& name) const;
  std::string Path(const std::string& name) const { return m_strFolder + "\\" + name; }
  std::string PendingPath(const std::string& name) const { return m_strFolder + "\\pending\\" + name; }
  std::string SentPath(const std::string& name) const { return m_strFolder + "\\sent\\" + name; }

  // Each makes the folders that it needs. Returns false when it failed; the report is then where it was.
  bool Begin(const std::string& name) const;
  bool Complete(const std::string& name) const;
  bool MarkAgreed(const std::string& name) const;
  bool MarkSent(const std::string& name) const;

  // Names of the reports that wait for delivery, oldest first.
  std::vector<std::string> Pending() const;

  // Deletes all reports but the newest count, wherever they lie, and leaves out what another process
  // delivers right now. Of a folder in which there is anything else, that stays.
  void KeepNewest(size_t count) const;

  // The right to deliver this report, among all processes, until the handle is closed; invalid when
  // another has it.
  UniqueHandle LockDelivery(const std::string& name) const;

 private:
  std::string m_strFolder;
};

// Makes the file, or puts it in the place of the one that is there. False when it stays as it was.
bool ReplaceFileBytes(const std::string& path, const std::string& bytes);

#endif  // MOSAICON_CRASHRPT_REPORT_STORE_H_
