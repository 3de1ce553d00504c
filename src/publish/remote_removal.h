// Deletes everything in a remote folder. The listing is fetched anew after every deletion, so what is
// deleted is always still there.
//
// Nothing outside the folder can be reached. Names that would leave it are never sent. Links are deleted,
// not followed, also where the server lists them as folders: a deletion is tried before a listed folder is
// entered, which takes a link away and which a folder refuses. What may still be a link after that is
// entered only when the server tells that it stands below the folder then, and the walk goes on only when
// it stands where it stood before after the way back; a server that does not tell is not asked to enter
// folders in the folder. (What remains is a server that refuses to delete its link and makes a folder of it
// in every answer.)
//
// What the server refuses to delete is passed over. An entry without a name, which an empty listing would
// stand for, is not sent either. Two things end the walk: a way back that is lost, and folders in folders
// without end.
//
// Portable. Thread of the user interface.
#ifndef MOSAICON_PUBLISH_REMOTE_REMOVAL_H_
#define MOSAICON_PUBLISH_REMOTE_REMOVAL_H_

#include <set>
#include <string>

#include "publish/publish_host.h"
#include "publish/remote_server.h"

class RemoteRemoval {
 public:
  // Both must outlive it.
  RemoteRemoval(RemoteServer& server, PublishHost& host) : m_server(server), m_host(host) {}

  // Empties the folder of this name, a plain one, in the current remote folder. The folder itself stays.
  void RemoveContents(const std::string& name);

  // False when the walk was ended, with a word in the status line. Then nothing more must be deleted: the
  // server may stand anywhere.
  bool IsSound() const { return !m_bStuck; }

  // What was passed over, "old\a" or "old\a and 2 more"; empty when there was nothing.
  std::string PassedOver() const;

 private:
  void RemoveEntries(const std::string& folder);
  // False when there is nothing left that may be deleted.
  bool TakeFirstEntry(const std::set<std::string>& refused, FtpDirEntry& entry);
  // False when the entry is still there.
  bool RemoveEntry(const std::string& folder, const FtpDirEntry& entry, std::string& place);
  bool RemoveFileOrLink(const std::string& name);
  bool RemoveFolder(const std::string& name, std::string& place);
  void EmptyFolder(const std::string& name, std::string& place);
  bool IsAt(const std::string& place);
  void PassOver(const std::string& path);
  void GiveUp(const std::string& status);

  RemoteServer& m_server;
  PublishHost& m_host;
  int m_nDepth = 0;
  bool m_bStuck = false;
  int m_nPassedOver = 0;
  std::string m_strFirstPassedOver;
};

#endif  // MOSAICON_PUBLISH_REMOTE_REMOVAL_H_
