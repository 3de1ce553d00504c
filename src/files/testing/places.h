// A place with files, one on this computer's disk and one in memory, for tests that are the same for both.
#ifndef MOSAICON_FILES_TESTING_PLACES_H_
#define MOSAICON_FILES_TESTING_PLACES_H_

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "files/system_files.h"
#include "files/testing/fake_file_system.h"
#include "support/temporary_folder.h"

class PlaceOnDisk {
 public:
  FileSystem& Files() { return m_files; }
  std::string Path(const std::string& name = "") const { return m_folder.Path(name); }
  void Put(const std::string& path, const std::string& bytes) { WriteFile(Native(path), bytes); }
  // Disks tell the time in steps.
  void PutLater(const std::string& path, const std::string& bytes) {
    const auto before = std::filesystem::last_write_time(path);
    Put(path, bytes);
    std::filesystem::last_write_time(path, before + std::chrono::seconds(2));
  }
  void Link(const std::string& path, const std::string& target) {
    std::filesystem::create_hard_link(target, path);
  }
  void SetReadOnly(const std::string& path, bool readOnly) {
    using std::filesystem::perms;
    const perms write = perms::owner_write | perms::group_write | perms::others_write;
    std::filesystem::permissions(
        path, write, readOnly ? std::filesystem::perm_options::remove : std::filesystem::perm_options::add);
  }
  // Reads from a file until the place is gone.
  void Use(const std::string& path) { m_inUse.open(path); }
  // Makes it the current folder, until it is changed back.
  void ChangeIntoFolder() {
    m_before = std::filesystem::current_path();
    std::filesystem::current_path(Path());
  }
  void ChangeBack() { std::filesystem::current_path(m_before); }

 private:
  static std::string Native(std::string path) {
    std::replace(path.begin(), path.end(), '\\',
                 static_cast<char>(std::filesystem::path::preferred_separator));
    return path;
  }

  TemporaryFolder m_folder;
  SystemFiles m_files;
  std::ifstream m_inUse;
  std::filesystem::path m_before;
};

class PlaceInMemory {
 public:
  PlaceInMemory() { m_files.PutFolder(kFolder); }
  FileSystem& Files() { return m_files; }
  std::string Path(const std::string& name = "") const {
    return name.empty() ? kFolder : std::string(kFolder) + "\\" + name;
  }
  void Put(const std::string& path, const std::string& bytes) { m_files.Put(path, bytes); }
  void PutLater(const std::string& path, const std::string& bytes) { Put(path, bytes); }
  void Link(const std::string& path, const std::string& target) { m_files.Link(path, target); }
  void SetReadOnly(const std::string& path, bool readOnly) { m_files.SetReadOnly(path, readOnly); }
  void Use(const std::string& path) { m_files.SetInUse(path); }
  void ChangeIntoFolder() { m_files.SetCurrentFolder(kFolder); }
  void ChangeBack() { m_files.SetCurrentFolder("C:\\work"); }

 private:
  static constexpr char kFolder[] = "D:\\test folder";
  FakeFileSystem m_files;
};

#endif  // MOSAICON_FILES_TESTING_PLACES_H_
