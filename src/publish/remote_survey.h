// Finds out which folders of the current remote folder hold published data sets. Names of the listing
// are used only when they stay where they are (remote_names.h). Portable; user-interface thread.
#ifndef MOSAICON_PUBLISH_REMOTE_SURVEY_H_
#define MOSAICON_PUBLISH_REMOTE_SURVEY_H_

#include <string>
#include <vector>

#include "publish/publish_host.h"
#include "publish/remote_data_entry.h"
#include "publish/remote_server.h"

// What the list of the dialog shows of a remote folder.
struct RemoteRow {
  std::string folder;
  std::string date;
};

class RemoteSurvey {
 public:
  // Both must outlive the survey.
  RemoteSurvey(RemoteServer& server, PublishHost& host) : m_server(server), m_host(host) {}

  // Fills entries (emptied first) with one entry for each row whose folder could be entered, in the
  // order of the rows, complete or not; returns how many there are. An abort ends the survey; what was
  // gathered stays. Progress counts rows. Without a connection, or when the current folder cannot be
  // listed, it returns 0 and leaves entries alone.
  int Collect(const std::vector<RemoteRow>& rows, std::vector<CRemoteDataEntry>& entries);

  // Adds the names in the folder of an entry, and in its tile folders, to the entry, and goes back.
  // Stops once the entry is complete. Returns 1 when the folder was entered, else 0.
  int SurveyFolder(CRemoteDataEntry& entry);

  // True when the last Collect went through and ended in the folder where it began. Otherwise nothing
  // may be written to the current remote folder: it may be another one than the user sees.
  bool HasSucceeded() const { return m_bSucceeded; }
  // True when it ended in another folder.
  bool HasLostItsWay() const { return m_bLost; }

 private:
  void AddNamesOfFolder(CRemoteDataEntry& entry);
  // False when the listing of the folder above could not be fetched again.
  bool AddNamesOfTile(const std::string& name, CRemoteDataEntry& entry);
  bool GoBack();

  RemoteServer& m_server;
  PublishHost& m_host;
  bool m_bSucceeded = false;
  bool m_bLost = false;
};

#endif  // MOSAICON_PUBLISH_REMOTE_SURVEY_H_
