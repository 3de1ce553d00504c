#include "job/tiler_log.h"

#include <fstream>
#include <iterator>
#include <sstream>

#include "files/utf8_text.h"

namespace {

std::streamoff SizeOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  return file ? static_cast<std::streamoff>(file.tellg()) : 0;
}

}  // namespace

std::string FindResultLine(const std::string& text) {
  std::string found;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line == "RESULT OK" || line.rfind("RESULT FAILED ", 0) == 0) found = line;
  }
  return found;
}

TilerLog::TilerLog(const std::string& path) : m_strPath(path), m_nSize(SizeOf(path)) {}

std::string TilerLog::ReadResultLine() const {
  std::ifstream file(m_strPath, std::ios::binary);
  file.seekg(m_nSize);
  return FindResultLine(
      AnsiFromUtf8(std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>())));
}
