// A folder of its own for one test, removed with all it holds. Text files in and out of it byte for
// byte.
#ifndef MOSAICON_TESTS_SUPPORT_TEMPORARY_FOLDER_H_
#define MOSAICON_TESTS_SUPPORT_TEMPORARY_FOLDER_H_

#include <string>

class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  // Full path of a file in the folder, with the system's separator; without name, of the folder.
  std::string Path(const std::string& name = "") const;

 private:
  std::string m_strPath;
};

void WriteFile(const std::string& path, const std::string& bytes);
std::string ReadFile(const std::string& path);
bool FileExists(const std::string& path);

#endif  // MOSAICON_TESTS_SUPPORT_TEMPORARY_FOLDER_H_
