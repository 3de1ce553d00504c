#include "batch/job_audit.h"

#include <cpl_error.h>
#include <windows.h>

#include <fstream>
#include <iterator>
#include <optional>

#include "batch/tiler_log.h"
#include "kvtools/split_path.h"

namespace {

using WriteTime = std::optional<unsigned long long>;

WriteTime GetWriteTime(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
  return (static_cast<unsigned long long>(data.ftLastWriteTime.dwHighDateTime) << 32) |
         data.ftLastWriteTime.dwLowDateTime;
}

// Tells a file that was written anew from one that an earlier run left.
class FreshFile {
 public:
  explicit FreshFile(const std::string& path) : m_strPath(path), m_before(GetWriteTime(path)) {}
  bool WasWritten() const {
    const WriteTime now = GetWriteTime(m_strPath);
    return now && now != m_before;
  }

 private:
  const std::string m_strPath;
  const WriteTime m_before;
};

std::string ReadFrom(const std::string& path, std::streamoff offset) {
  std::ifstream file(path, std::ios::binary);
  file.seekg(offset);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::streamoff SizeOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  return file ? static_cast<std::streamoff>(file.tellg()) : 0;
}

// The script writes UTF-8.
std::string ToAnsi(const std::string& utf8) {
  std::vector<wchar_t> wide(utf8.size() + 1);
  const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(),
                                         static_cast<int>(wide.size()));
  std::string ansi(utf8.size() + 1, '\0');
  ansi.resize(static_cast<size_t>(WideCharToMultiByte(CP_ACP, 0, wide.data(), length, ansi.data(),
                                                      static_cast<int>(ansi.size()), nullptr, nullptr)));
  return ansi;
}

}  // namespace

void JobAudit::Fail(const std::string& reason) {
  std::string& result = m_results[m_strOrthophoto];
  if (result.empty()) result = reason;
}

void JobAudit::RunChecked(Run run, const char* name, const std::string& toolPath,
                          const std::string& commandLine) {
  const std::string path = QuotedArguments(commandLine).back();
  const FreshFile output(path);
  (m_runner.*run)(toolPath, commandLine);
  if (!output.WasWritten()) Fail(std::string(name) + " could not write " + path);
}

void JobAudit::RunTranslator(const std::string& toolPath, const std::string& commandLine) {
  m_strOrthophoto = QuotedArguments(commandLine).front();
  m_results[m_strOrthophoto].clear();
  if (m_host.IsAborted()) return;
  RunChecked(&ToolRunner::RunTranslator, "gdal_translate", toolPath, commandLine);
}

void JobAudit::RunWarper(const std::string& toolPath, const std::string& commandLine) {
  m_strReprojected = QuotedArguments(commandLine).back();
  if (m_host.IsAborted() || HasFailed()) return;
  RunChecked(&ToolRunner::RunWarper, "gdalwarp", toolPath, commandLine);
}

void JobAudit::RunTiler(const std::string& toolPath, const std::string& commandLine) {
  const std::vector<std::string> arguments = QuotedArguments(commandLine);
  const std::string& input = arguments[arguments.size() - 2];
  if (input != m_strReprojected) {
    m_strOrthophoto = input;
    m_results[m_strOrthophoto].clear();
  }
  // After a failure there is nothing to tile but what an earlier run left.
  if (m_host.IsAborted() || HasFailed()) return;
  const FreshFile document(arguments.back() + "\\doc.kml");
  const std::streamoff logSize = SizeOf(m_strTilerLog);
  m_runner.RunTiler(toolPath, commandLine);
  if (m_host.IsAborted()) return;
  const TilerResult result = ReadTilerResult(ToAnsi(ReadFrom(m_strTilerLog, logSize)));
  if (document.WasWritten() && !result.told) {
    Fail("the tiling script could not write its log " + m_strTilerLog +
         ", so nothing is known of its success");
  } else if (!result.ok) {
    Fail(result.reason);
  } else if (!document.WasWritten()) {
    Fail("the tiling script made no doc.kml");
  }
}

bool JobAudit::Rename(const std::string& source, const std::string& target) {
  const bool renamed = SystemFiles::Rename(source, target);
  // A file that an earlier job left under the new name stays. That does no harm as long as it says
  // the same.
  if (!renamed && Exists(source) && ReadFrom(source, 0) != ReadFrom(target, 0)) {
    Fail(target + " is of an earlier job with another result and was kept; the new one is " + source);
  }
  return renamed;
}

bool JobAudit::Copy(const std::string& source, const std::string& target) {
  const bool copied = SystemFiles::Copy(source, target);
  if (!copied) Fail("could not write " + target);
  return copied;
}

bool JobAudit::RewriteLinks(const std::string& kml, const std::string& baseUrl,
                            const std::string& subFolder) {
  const bool rewritten = RealFinishingSteps::RewriteLinks(kml, baseUrl, subFolder);
  // The rewriter's last step, putting the new text in place, may fail in silence.
  if (!rewritten || !Exists(kml)) Fail("could not write the links of " + kml);
  return rewritten;
}

bool JobAudit::MakePreview(const std::string& orthophoto, const std::string& picture) {
  CPLErrorReset();
  const bool made = RealFinishingSteps::MakePreview(orthophoto, picture);
  if (!made) {
    std::string detail = CPLGetLastErrorMsg();
    detail.erase(detail.find_last_not_of(" \r\n") + 1);
    Fail("could not make the picture " + picture + (detail.empty() ? "" : ": " + detail));
  }
  const PathParts parts = SplitPath(picture);
  const std::string local = JoinPath(parts.drive, parts.directory, "googleearth_loc", "kml");
  if (!Exists(local)) Fail("could not make " + local);
  return made;
}
