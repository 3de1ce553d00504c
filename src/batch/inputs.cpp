#include "batch/inputs.h"

#include <windows.h>

#include "batch/map_extent.h"
#include "job/georeference.h"
#include "job/input_list.h"
#include "job/job_settings.h"
#include "kvtools/kvtools.h"

namespace {

// What the window's messages leave out; a folder has no cause of its own.
std::string Cause(FileSystem& files, const std::string& path) {
  return files.IsFolder(path) ? std::string() : " (" + ExplainRefusal(path) + ")";
}

// Says of which file a message speaks: the window's messages do not need to.
class NamedMessages : public MessageSink, public SkippedFileObserver {
 public:
  NamedMessages(MessageSink& messages, FileSystem& files, std::string path)
      : m_messages(messages), m_files(files), m_strPath(std::move(path)) {}
  void ShowMessage(MessageIcon icon, const std::string& text) override {
    ++m_nShown;
    m_messages.ShowMessage(icon, m_strPath + ": " + text + Cause(m_files, m_strPath));
  }
  void OnSkipped(const std::string& path) override {
    ++m_nShown;
    m_messages.ShowMessage(MessageIcon::kWarning,
                           path + ": no geographic information, skipped" + Cause(m_files, path));
  }
  size_t Shown() const { return m_nShown; }

 private:
  MessageSink& m_messages;
  FileSystem& m_files;
  const std::string m_strPath;
  size_t m_nShown = 0;
};

// Moves what can be used into the result: the tools cannot be given accented names, and no map holds the
// globe.
void Accept(std::vector<CTifData>& scanned, BatchInputs& result, MessageSink& messages) {
  for (CTifData& data : scanned) {
    const std::string prefix = data.m_strFileName + ": ";
    const std::string problem = FindExtentProblem(data.m_vCorners);
    if (HasAccents(data.m_strFileName)) {
      ++result.refused;
      messages.ShowMessage(
          MessageIcon::kInformation,
          prefix + "No accented words must be into orthophoto path and name. Please check it");
    } else if (!problem.empty()) {
      ++result.refused;
      messages.ShowMessage(MessageIcon::kWarning, prefix + problem);
    } else {
      if (data.m_bRotationLost) {
        messages.ShowMessage(MessageIcon::kWarning,
                             prefix + "the image is rotated, but will be placed without its rotation");
      }
      result.orthophotos.push_back(std::move(data));
    }
  }
}

}  // namespace

BatchInputs GatherInputs(const std::vector<std::string>& inputs, FileSystem& files, MessageSink& messages) {
  BatchInputs result;
  for (const std::string& input : inputs) {
    const std::string path = files.FullPath(input);
    if (!files.Exists(path)) {
      ++result.refused;
      messages.ShowMessage(MessageIcon::kWarning,
                           path + ": there is no such file or folder" +
                               (path.size() >= MAX_PATH ? " (the path is too long)" : ""));
      continue;
    }
    NamedMessages named(messages, files, path);
    std::vector<CTifData> scanned;
    const bool folder = files.IsFolder(path);
    ScanInput(folder ? KVT_OptimizePath(path, 0) : path, folder, files, named, scanned, &named);
    result.refused += named.Shown();
    Accept(scanned, result, messages);
  }
  return result;
}
