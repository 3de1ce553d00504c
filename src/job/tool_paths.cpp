#include "job/tool_paths.h"

#include "kvtools/split_path.h"
#include "maker.h"

namespace {

// Characters of an environment variable with its terminator, by the system's rules.
constexpr size_t kMaxVariable = 32767;
constexpr const char* kEngine = "mosaicon-tiler";
constexpr const char* kInterpreter = "python";
constexpr const char* kExtension = "exe";

}  // namespace

ToolPaths MakeToolPaths(const std::string& programPath) {
  const PathParts program = SplitPath(programPath);
  const std::string directory = program.directory + "gdal2tiles\\";
  ToolPaths tools;
  tools.folder = program.drive + program.directory + "gdal2tiles";
  tools.engine = JoinPath(program.drive, directory, kEngine, kExtension);
  tools.script = JoinPath(program.drive, directory, "gdal2tiles", "py");
  tools.translator = JoinPath(program.drive, directory, "gdal_translate", kExtension);
  tools.warper = JoinPath(program.drive, directory, "gdalwarp", kExtension);
  tools.interpreter = JoinPath(program.drive, directory, kInterpreter, kExtension);
  return tools;
}

TilerProgram FindTiler(const ToolPaths& tools, FileSystem& files) {
  if (files.Exists(tools.engine)) return {tools.engine, ""};
  return {tools.interpreter, tools.script};
}

std::string NameOfTiler(const std::string& path) {
  const bool isEngine = SplitPath(path).name == kEngine;
  return std::string(isEngine ? kEngine : kInterpreter) + "." + kExtension;
}

bool CheckTools(const ToolPaths& tools, FileSystem& files, MessageSink& messages) {
  struct Check {
    const std::string& path;
    const char* what;
    bool cutsTiles;
  };
  const Check checks[] = {{tools.script, "script gdal2tiles", true},
                          {tools.translator, "tool gdal_translate", false},
                          {tools.warper, "tool gdalwarp", false},
                          {tools.interpreter, "scripts", true}};
  const bool hasEngine = files.Exists(tools.engine);
  for (const Check& check : checks) {
    if ((check.cutsTiles && hasEngine) || files.Exists(check.path)) continue;
    messages.ShowMessage(MessageIcon::kInformation, std::string("Unable to find the process data ") +
                                                        check.what + ". Please contact " + kMakerName + " (" +
                                                        kSupportEmail + ")");
    return false;
  }
  return true;
}

bool SetToolEnvironment(const ToolPaths& tools, ProcessEnvironment& environment, MessageSink& messages) {
  std::string path = environment.Get("PATH").value_or("");
  if (path.find(tools.folder) == std::string::npos) {
    // A search path cut in the middle would break more than this program.
    const std::string longer = path + ";" + tools.folder;
    if (longer.size() < kMaxVariable) path = longer;
  }
  if (environment.Set("GDAL_PATH", tools.folder) && environment.Set("PATH", path) &&
      environment.Set("GDAL_DATA", tools.folder + "\\gdal-data") &&
      environment.Set("GDAL_DRIVER_PATH", tools.folder + "\\gdalplugins")) {
    return true;
  }
  messages.ShowMessage(MessageIcon::kWarning, "Unable to set environmental variables");
  return false;
}
