// The tests' own data files, line by line.
#ifndef MOSAICON_NET_TESTING_DATA_FILE_H_
#define MOSAICON_NET_TESTING_DATA_FILE_H_

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

// NET_TEST_DATA is the folder. Line ends of either system are removed.
inline std::vector<std::string> TestDataLines(const std::string& name) {
  std::ifstream file(std::string(NET_TEST_DATA) + "/" + name, std::ios::binary);
  EXPECT_TRUE(file.good()) << NET_TEST_DATA << " " << name;
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

#endif  // MOSAICON_NET_TESTING_DATA_FILE_H_
