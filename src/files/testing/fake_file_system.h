// Files and folders in memory, in the manner of Windows and without a disk: for tests of what works on a
// FileSystem. It passes the tests that the real one passes.
//
// Only ASCII letters are compared without regard to case. Whatever is found comes in the order in which it
// was put there.
#ifndef MOSAICON_FILES_TESTING_FAKE_FILE_SYSTEM_H_
#define MOSAICON_FILES_TESTING_FAKE_FILE_SYSTEM_H_

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "files/file_system.h"

class FakeFileSystem : public FileSystem {
 public:
  // changes, when given, gets a line for each call that is to change something, such as "delete d:\a" or
  // "copy d:\a -> d:\b", whether it succeeds or not. It must outlive this.
  explicit FakeFileSystem(std::vector<std::string>* changes = nullptr);

  // What is there, without a line. The folders above come with it; a file that is there already gets the
  // new bytes.
  void Put(const std::string& path, const std::string& bytes = "");
  void PutFolder(const std::string& path);
  // Another name of a file that is there.
  void Link(const std::string& path, const std::string& target);
  // Takes away a file, or a folder with everything in it, whatever holds it.
  void Remove(const std::string& path);
  // Relative paths are relative to this folder; "C:\work" at first.
  void SetCurrentFolder(const std::string& path);

  // Of a file that is there. One that is in use can be read and nothing else.
  void SetReadOnly(const std::string& path, bool readOnly = true);
  void SetInUse(const std::string& path, bool inUse = true);
  // Nothing of that name can be made, changed, renamed or deleted, as without the right to do so.
  void Refuse(const std::string& path, bool refused = true);

  bool Exists(const std::string& path) override;
  bool IsFolder(const std::string& path) override;
  bool Find(const std::string& pattern, std::vector<FoundFile>& found) override;
  std::optional<std::string> Read(const std::string& path, std::size_t maxBytes) override;
  std::optional<std::uint64_t> WriteTime(const std::string& path) override;
  std::string FullPath(const std::string& path) override;
  std::string Identity(const std::string& path) override;
  bool CreateFolder(const std::string& path) override;
  bool Delete(const std::string& path) override;
  bool Rename(const std::string& source, const std::string& target) override;
  bool Copy(const std::string& source, const std::string& target) override;

 private:
  struct Contents {
    std::string bytes;
    std::uint64_t writeTime = 0;
    bool isReadOnly = false;
    bool isInUse = false;
  };
  struct Entry {
    std::string path;                // full, without a separator at its end
    std::shared_ptr<Contents> file;  // shared with its links; null for a folder
  };

  void Note(const std::string& change);
  std::string Key(const std::string& path);
  Entry* Look(const std::string& path);
  Contents* LookForFile(const std::string& path);
  // Whether something new can have this path.
  bool IsFree(const std::string& path);
  bool IsRefused(const std::string& path) { return m_refused.contains(Key(path)); }

  std::vector<std::string>* m_changes;
  std::string m_currentFolder;
  std::uint64_t m_clock = 0;  // goes on with everything that is written
  std::vector<Entry> m_entries;
  std::set<std::string> m_refused;  // keys
};

#endif  // MOSAICON_FILES_TESTING_FAKE_FILE_SYSTEM_H_
