// A remote server for tests: a tree of folders and files in memory that records every command, fails as
// scripted, and lies in its listings. Names go through the same resolution as on a real server ("..",
// "a/b" and "/a" reach other folders), so that a test sees what a hostile name would do. Paths begin
// with "/", which is the login folder.
#ifndef MOSAICON_PUBLISH_TESTING_FAKE_REMOTE_SERVER_H_
#define MOSAICON_PUBLISH_TESTING_FAKE_REMOTE_SERVER_H_

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "publish/remote_server.h"

class FakeRemoteServer : public RemoteServer {
 public:
  static constexpr int kAlways = -1;

  FakeRemoteServer();

  // --- What is there. A listing has the order in which things were added. ---
  // Both make the folders above, too.
  void AddFolder(const std::string& path);
  void AddFile(const std::string& path, const std::string& content = "");
  // A link to a folder, listed as one. From the folder that it leads into, CDUP leads to the folder above
  // that one.
  void AddLink(const std::string& path, const std::string& target);
  // Takes files and empty folders away without a command, as another client does.
  void Delete(const std::vector<std::string>& paths);
  bool Has(const std::string& path) const;
  // The bytes of a file; fails the test when there is none.
  std::string Content(const std::string& path) const;
  // Everything below the root in the order of its making, folders with "/" at their end.
  std::vector<std::string> Paths() const;
  const std::string& CurrentFolder() const { return m_current; }

  // --- What goes wrong. ---
  // Lets a command fail with the code: a whole line ("CWD a", "DELE x"), a verb alone ("STOR"), or of the
  // commands without a name those given in one folder ("LIST /a", "CDUP /a/b"). The first `after` of them
  // succeed, the next `times` fail. A failed LIST leaves the entries of the one before it.
  void Fail(const std::string& command, int code, int times = kAlways, int after = 0);
  // Lists something in a folder, before what is really there, that is not: ".", "..", "a/b".
  void AddLie(const std::string& folder, const std::string& name, bool isFolder);
  void ForgetLies() { m_lies.clear(); }
  // Makes one more file, "name0" and so on, in a folder before each of the next LISTs of it.
  void Refill(const std::string& folder, const std::string& name, int times = kAlways);
  // The connection is lost after so many more commands: then every command fails with 38.
  void DisconnectAfter(int commands) { m_commandsLeft = commands; }
  void Disconnect() { DisconnectAfter(0); }

  // --- What happened. ---
  // "CWD a", "CDUP", "MKD a", "RMD a", "DELE a", "PWD", "STOR a", "LIST"; also of those that failed.
  std::vector<std::string> commands;
  std::vector<int> reportedErrors;
  // Runs after each command was noted and before it is carried out, as handlers of a user interface do.
  std::function<void(const std::string& command)> onCommand;
  // Reads local files for SendFile; nullopt gives 81. Real files unless a test replaces it.
  std::function<std::optional<std::string>(const std::string& path)> readLocalFile;

  bool IsConnected() override { return m_commandsLeft != 0; }
  int ChangeFolder(const std::string& name) override;
  int GoToParent() override;
  int MakeFolder(const std::string& name) override;
  int RemoveFolder(const std::string& name) override;
  int RemoveFile(const std::string& name) override;
  int CurrentFolder(std::string& path) override;
  int SendFile(const std::string& localPath, const std::string& name) override;
  int List() override;
  int EntryCount() override { return static_cast<int>(m_entries.size()); }
  FtpDirEntry Entry(int index) override;
  int ReportError(int code) override;

 private:
  struct Node {
    std::string path;
    bool isFolder = false;
    std::string content;
    std::string target = {};  // of a link
  };
  struct Failure {
    std::string command;
    int code = 0;
    int times = 0;
    int after = 0;
  };
  struct Lie {
    std::string folder;
    FtpDirEntry entry;
  };
  struct Supply {
    std::string name;
    int times = 0;
    int made = 0;
  };

  // Notes the command; its result when it fails as scripted.
  int Begin(const std::string& verb, const std::string& name);
  int ScriptedResult(const std::string& verb, const std::string& line);
  std::string Resolve(const std::string& name) const;
  const Node* Find(const std::string& path) const;
  bool IsFolder(const std::string& path) const;
  // Where a link leads; any other path as it is.
  std::string Follow(const std::string& path) const;
  void Remove(const std::string& path);

  std::vector<Node> m_nodes;
  std::string m_current = "/";
  std::vector<FtpDirEntry> m_entries;
  std::vector<Failure> m_failures;
  std::vector<Lie> m_lies;
  std::map<std::string, Supply> m_supplies;
  int m_commandsLeft = kAlways;
};

#endif  // MOSAICON_PUBLISH_TESTING_FAKE_REMOTE_SERVER_H_
