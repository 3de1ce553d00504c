#include "job/job_settings.h"

#include <algorithm>
#include <cstdlib>

#include "kvtools/ascii.h"
#include "kvtools/kvtools.h"
#include "kvtools/profile_section.h"

namespace {

constexpr ProfileSection kProfile("Input", 4096);
constexpr char kShowFinishedMap[] = "ShowFinishedMap";
constexpr char kTiles[] = "Tiles";
constexpr size_t kRootFolderLength = 3;

void SaveByte(const char* key, uint32_t value) {
  kProfile.Save(key, std::to_string(value & 0xFF));
}

bool Refuse(MessageSink& messages, const std::string& text) {
  messages.ShowMessage(MessageIcon::kInformation, text);
  return false;
}

std::string ReplaceSpaces(std::string text) {
  std::replace(text.begin(), text.end(), ' ', '_');
  return text;
}

bool NamesHttp(const std::string& url) {
  return LowerAscii(url).find("http://") != std::string::npos;
}

bool CheckTargetUrl(JobSettings& settings, JobForm& form) {
  if (!settings.webOutput) {
    settings.targetUrl.clear();
    return true;
  }
  if (settings.targetUrl.empty()) return Refuse(form, "Select the target URL");
  if (HasAccents(settings.targetUrl)) {
    return Refuse(form, "No accented words must be included into target absolute url. Please check it");
  }
  if (!NamesHttp(settings.targetUrl)) {
    settings.targetUrl = "http://" + settings.targetUrl;
    form.WriteBackTargetUrl(settings.targetUrl);
  }
  kProfile.Save("TargetURL", settings.targetUrl);
  return true;
}

// Replaces the spaces of the last component of a path.
std::string ReplaceSpacesInName(const std::string& path) {
  const size_t name = path.rfind('\\') + 1;
  return path.substr(0, name) + ReplaceSpaces(path.substr(name));
}

bool CheckTargetFolder(JobSettings& settings, FileSystem& files, JobForm& form) {
  const std::string typed = Unquote(settings.targetFolder);
  if (typed.empty()) return Refuse(form, "Select the target folder");
  // Twice: the system drops a space at the end, and "." may stand for a name that has some.
  const std::string named = ReplaceSpacesInName(KVT_OptimizePath(typed, 0));
  const std::string folder = ReplaceSpacesInName(files.FullPath(named));
  // A root can be written in longer ways, such as "c:\\" and "c:\.".
  if (std::min(typed.size(), folder.size()) <= kRootFolderLength) {
    return Refuse(form, "Root folders (e.g. c:\\) are not allowed! ");
  }
  settings.targetFolder = folder;
  form.WriteBackTargetFolder(settings.targetFolder);
  kProfile.Save("TargetFolder", settings.targetFolder);
  return true;
}

// What no other check has looked at and no tool could be given.
bool CheckCommandTexts(const JobSettings& settings, JobForm& form) {
  const std::string title = FindTitleProblem(settings.mapTitle);
  if (!title.empty()) return Refuse(form, "The map title " + title);
  const std::string key = FindGoogleKeyProblem(settings.googleApiKey);
  return key.empty() || Refuse(form, "The Google API key " + key);
}

}  // namespace

const std::vector<std::string>& ResamplingModes() {
  static const std::vector<std::string> modes = {"average",     "near",    "bilinear", "cubic",
                                                 "cubicspline", "lanczos", "antialias"};
  return modes;
}

bool HasAccents(const std::string& text) {
  return text.find_first_of("\xE0\xE8\xE9\xEC\xF2\xF9") != std::string::npos;
}

bool HasAnyOf(const std::string& text, const char* characters) {
  return text.find_first_of(characters) != std::string::npos ||
         std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < 0x20; });
}

std::string Unquote(const std::string& path) {
  const bool quoted = path.size() >= 2 && path.front() == '"' && path.back() == '"';
  return quoted ? path.substr(1, path.size() - 2) : path;
}

std::string FindTitleProblem(const std::string& title) {
  return HasAnyOf(title, "\\/:*?\"<>|") ? "must not contain any of \\ / : * ? \" < > |" : "";
}

std::string FindGoogleKeyProblem(const std::string& key) {
  return HasAnyOf(key, " \"") ? "must not contain blanks or quotes" : "";
}

JobSettings RestoreSettings() {
  JobSettings settings;
  settings.targetUrl = kProfile.Load("TargetURL");
  settings.googleApiKey = kProfile.Load("GoogleAPI");
  settings.resampling = std::atoi(kProfile.Load("Resampling", "0").c_str());
  if (settings.resampling < 0 || settings.resampling >= static_cast<int>(ResamplingModes().size())) {
    settings.resampling = 0;
  }
  settings.showFinishedMap = kProfile.Load(kShowFinishedMap) == "1";
  // Of the two that the window offers.
  const bool isSmall = kProfile.Load(kTiles) == NameOf(tiler::TileFormat::kAuto);
  settings.tiles = isSmall ? tiler::TileFormat::kAuto : tiler::TileFormat::kPng;
  settings.mapTitle = kProfile.Load("MapTitle");
  settings.targetFolder = kProfile.Load("TargetFolder");
  return settings;
}

void SaveShowFinishedMap(bool isShown) {
  kProfile.Save(kShowFinishedMap, isShown ? "1" : "0");
}

void SaveTiles(tiler::TileFormat tiles) {
  kProfile.Save(kTiles, NameOf(tiles));
}

bool ValidateAndSaveSettings(JobSettings& settings, size_t orthophotos, FileSystem& files, JobForm& form) {
  if (settings.inputPath.empty() || orthophotos == 0) {
    return Refuse(form, "Select the input orthophoto path");
  }
  if (HasAccents(settings.inputPath)) {
    return Refuse(form, "No accented words must be into orthophoto path and name. Please check it");
  }
  if (!CheckTargetUrl(settings, form)) return false;

  kProfile.Save("GoogleAPI", settings.googleApiKey);
  SaveByte("Transparency_R", settings.transparency);
  SaveByte("Transparency_G", settings.transparency >> 8);
  SaveByte("Transparency_B", settings.transparency >> 16);
  kProfile.Save("Resampling", std::to_string(settings.resampling));

  settings.mapTitle = ReplaceSpaces(settings.mapTitle);
  form.WriteBackMapTitle(settings.mapTitle);
  kProfile.Save("MapTitle", settings.mapTitle);
  return CheckTargetFolder(settings, files, form) && CheckCommandTexts(settings, form);
}
