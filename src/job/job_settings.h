// What the user asks for: how it is restored, checked, normalised and saved. Portable; settings are
// kept by the profile functions of KVTools under the section "Input".
#ifndef MOSAICON_JOB_JOB_SETTINGS_H_
#define MOSAICON_JOB_JOB_SETTINGS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "files/file_system.h"
#include "job/job_host.h"
#include "tiler/tile_kind.h"

struct JobSettings {
  std::string inputPath;         // one orthophoto, or the folder that holds several
  bool webOutput = false;        // the result gets absolute links below targetUrl
  std::string targetUrl;         // where the target folder will be published
  std::string googleApiKey;      // may be empty
  uint32_t transparency = 0;     // R + 256 * G + 65536 * B
  int resampling = 0;            // index into ResamplingModes; stored, not used by the tools
  bool showFinishedMap = false;  // in the preview, where there is no Google key
  tiler::TileFormat tiles = tiler::TileFormat::kPng;
  std::string mapTitle;      // may be empty
  std::string targetFolder;  // checked: a full path without a final separator
};

// "average", "near", ... in the order of the list that the user chooses from.
const std::vector<std::string>& ResamplingModes();

// True when text holds one of the bytes of a grave or acute lower-case vowel (Windows-1252).
// Only these six: upper-case letters pass.
bool HasAccents(const std::string& text);

// True when text holds one of these characters, or any control character.
bool HasAnyOf(const std::string& text, const char* characters);

// A path as it is meant: without the quotes that the shell puts around it when it is copied as a path.
std::string Unquote(const std::string& path);

// What is wrong with a map title, which becomes part of a file name and of a command line, or with a
// Google API key, which becomes part of a command line: "must not contain ...", or an empty text.
std::string FindTitleProblem(const std::string& title);
std::string FindGoogleKeyProblem(const std::string& key);

// What was stored by the last job. Black is the transparent colour at every start, and web output is
// off, whatever was stored; a stored resampling mode that is no index of the list counts as 0.
JobSettings RestoreSettings();

// At once, not only when a job is started.
void SaveShowFinishedMap(bool isShown);
void SaveTiles(tiler::TileFormat tiles);

// Checks the settings one after the other and saves each as it passes, so that a later failure keeps
// what was saved before. Normalised values are written back to settings and to the form. The first
// failure is shown and ends it with false. orthophotos is the number of usable inputs; files tells
// where the target folder really is.
bool ValidateAndSaveSettings(JobSettings& settings, size_t orthophotos, FileSystem& files, JobForm& form);

#endif  // MOSAICON_JOB_JOB_SETTINGS_H_
