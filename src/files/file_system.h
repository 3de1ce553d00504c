// The files and folders of a computer, as everything above sees them. SystemFiles (system_files.h) is the
// real one; tests take testing/fake_file_system.h.
//
// Paths are 8-bit text, on Windows in the ANSI code page. Both "\" and "/" separate their components, on
// every system. A name that is too long for the system, or that it cannot express, is that of nothing.
// Failures are told by the result; nothing throws. Any thread.
#ifndef MOSAICON_FILES_FILE_SYSTEM_H_
#define MOSAICON_FILES_FILE_SYSTEM_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct FoundFile {
  std::string path;  // the pattern's folder and the name
  std::string name;  // last component
  bool isDirectory = false;
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  // True when exactly this path exists, as a file or a folder.
  virtual bool Exists(const std::string& path) = 0;
  // Whether path is a folder or a link to one. What cannot be looked at is none.
  virtual bool IsFolder(const std::string& path) = 0;

  // Fills found (emptied first) with everything that matches a pattern such as "d:\maps\*.tif", by the
  // system's rules and in its order: without regard to case, "*.*" is all there is, and hidden files and
  // links count. "." and ".." are left out.
  //
  // False when the search failed: the pattern's folder is missing, may not be read, is no folder, or the
  // search broke off; found then holds what came before. That nothing matches is no failure.
  virtual bool Find(const std::string& pattern, std::vector<FoundFile>& found) = 0;

  // What a file holds; nullopt when it cannot be read or has more bytes than that.
  virtual std::optional<std::string> Read(const std::string& path, std::size_t maxBytes) = 0;

  // When a file was last written, in units of the system; nullopt when there is no such file.
  virtual std::optional<std::uint64_t> WriteTime(const std::string& path) = 0;

  // The path from the root on, with the system's own separator between its components and without "." and
  // ".."; as the system understands it now, so relative to the current folder. What it names need not
  // exist. The path itself when it has no such form.
  virtual std::string FullPath(const std::string& path) = 0;
  // The same text for all the ways to name one existing file or folder, links and short names included,
  // and another for any other; empty when there is no such thing. It lasts as long as the file does: one
  // that is written anew under the same name may get another.
  virtual std::string Identity(const std::string& path) = 0;

  // Creates one level; true also when something of that name exists already.
  virtual bool CreateFolder(const std::string& path) = 0;
  // Deletes a file, or a link and not what it leads to. Fails for a folder, for a file that is read-only,
  // and where the system knows of such a thing, for one that is in use.
  virtual bool Delete(const std::string& path) = 0;
  // Gives a file or a folder another name on the same disk. Fails when target exists.
  virtual bool Rename(const std::string& source, const std::string& target) = 0;
  // Copies a file. Replaces an existing target, unless that is read-only, a folder or the source itself.
  virtual bool Copy(const std::string& source, const std::string& target) = 0;
};

// For those to whom a folder that cannot be read is an empty one.
std::vector<FoundFile> FindFiles(FileSystem& files, const std::string& pattern);

// Whether two paths lead to one thing, however they are written. False when one of them does not exist.
bool IsSameFile(FileSystem& files, const std::string& left, const std::string& right);

#endif  // MOSAICON_FILES_FILE_SYSTEM_H_
