#include "job/tiler_log_file.h"

#include <ctime>

namespace {

std::string TimeStamp() {
  const std::time_t now = std::time(nullptr);
  char text[32] = "";
  if (const std::tm* local = std::localtime(&now)) std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", local);
  return text;
}

}  // namespace

TilerLogFile::TilerLogFile(FileSystem& files, ProcessEnvironment& environment, const std::string& program,
                           unsigned long processId)
    : m_files(files) {
  const std::string folder =
      environment.Get("LOCALAPPDATA").value_or(environment.Get("TEMP").value_or(".")) + "\\Mosaicon";
  files.CreateFolder(folder);
  files.CreateFolder(folder + "\\Logs");
  m_strPath = folder + "\\Logs\\" + program + "-" + TimeStamp() + "-" + std::to_string(processId) + ".log";
  environment.Set("MOSAICON_TILER_LOG", m_strPath);
}

TilerLogFile::~TilerLogFile() {
  if (!m_bKeep) m_files.Delete(m_strPath);
}

std::string TilerLogFile::Keep() {
  if (!m_files.Exists(m_strPath)) return "";
  m_bKeep = true;
  return m_strPath;
}
