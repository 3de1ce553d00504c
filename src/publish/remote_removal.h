// Deletes everything in a remote folder. The listing is fetched anew after every deletion, so what is
// deleted is always still there.
//
// Nothing outside the folder can be reached: names that would leave it are never sent, and links are
// deleted, not followed. What cannot be deleted twice in a row ends the walk with a word in the status
// line, and so do folders in folders without end.
//
// Portable. Thread of the user interface.
#ifndef MOSAICON_PUBLISH_REMOTE_REMOVAL_H_
#define MOSAICON_PUBLISH_REMOTE_REMOVAL_H_

#include <string>

#include "publish/publish_host.h"
#include "publish/remote_server.h"

class RemoteRemoval {
 public:
  // Both must outlive it.
  RemoteRemoval(RemoteServer& server, PublishHost& host) : m_server(server), m_host(host) {}

  // Empties the folder of this name, a plain one, in the current remote folder. The folder itself stays.
  void RemoveContents(const std::string& name);

  // False when something could not be deleted, or when the way back to the current remote folder was
  // lost. Then nothing more must be deleted.
  bool IsSound() const { return !m_bStuck; }

 private:
  void RemoveEntries(const std::string& folder);
  // False when there is nothing left that may be deleted.
  bool TakeFirstEntry(FtpDirEntry& entry);
  bool RemoveEntry(const std::string& folder, const FtpDirEntry& entry);
  bool RemoveFileOrLink(const std::string& name);
  void GiveUp(const std::string& status);

  RemoteServer& m_server;
  PublishHost& m_host;
  int m_nDepth = 0;
  bool m_bStuck = false;
};

#endif  // MOSAICON_PUBLISH_REMOTE_REMOVAL_H_
