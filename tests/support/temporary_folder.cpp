#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  static std::atomic<unsigned> count{0};
  std::random_device random;
  const std::string name = "mosaicon-test-" + std::to_string(random()) + "-" + std::to_string(count++);
  const fs::path path = fs::temp_directory_path() / name;
  fs::create_directory(path);
  m_strPath = path.string();
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(m_strPath, ignored);
}

std::string TemporaryFolder::Path(const std::string& name) const {
  return name.empty() ? m_strPath : m_strPath + static_cast<char>(fs::path::preferred_separator) + name;
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  ASSERT_TRUE(file.good()) << path;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.good()) << path;
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

bool FileExists(const std::string& path) {
  return fs::exists(path);
}
