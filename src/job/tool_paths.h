// Finds the external tools of a job and prepares the environment that they inherit. Portable; talks
// to the system through the interfaces given.
#ifndef MOSAICON_JOB_TOOL_PATHS_H_
#define MOSAICON_JOB_TOOL_PATHS_H_

#include <string>

#include "files/file_system.h"
#include "job/job_host.h"
#include "job/process_environment.h"

// The tool folder lies beside the program and is called "gdal2tiles".
struct ToolPaths {
  std::string folder;       // without a final backslash
  std::string engine;       // mosaicon-tiler.exe, which cuts tiles without interpreter and script
  std::string script;       // gdal2tiles.py
  std::string translator;   // gdal_translate.exe
  std::string warper;       // gdalwarp.exe
  std::string interpreter;  // python.exe
};

// What cuts the tiles.
struct TilerProgram {
  std::string path;    // of the program that is run
  std::string script;  // its first argument; empty: it needs none
};

// The paths for a program whose executable is programPath; nothing is looked up.
ToolPaths MakeToolPaths(const std::string& programPath);

// The engine when it is in the tool folder, else the interpreter with the script.
TilerProgram FindTiler(const ToolPaths& tools, FileSystem& files);

// The name by which the program of a path is started in its folder: the engine's, or the interpreter's
// whatever the path names.
std::string NameOfTiler(const std::string& path);

// True when all tools exist that a job needs; otherwise shows which one is missing, the first one only.
bool CheckTools(const ToolPaths& tools, FileSystem& files, MessageSink& messages);

// Sets GDAL_PATH, PATH, GDAL_DATA and GDAL_DRIVER_PATH, in this order. On the first failure shows a
// message and returns false; what is set stays set. A PATH that holds the tool folder already, or
// that would grow beyond what the system allows, keeps its value.
bool SetToolEnvironment(const ToolPaths& tools, ProcessEnvironment& environment, MessageSink& messages);

#endif  // MOSAICON_JOB_TOOL_PATHS_H_
