// The driver: what it makes of the files that the tiling script has left.
#include "job/batch_driver.h"
#include "kvtools/kvtools.h"
#include "kvtools/split_path.h"

namespace {

// In bytes. Larger documents are not compared.
constexpr size_t kMaxDocument = 4 << 20;
constexpr char kLocalDocument[] = "googleearth_loc";
constexpr char kWebDocument[] = "googleearth_web";

// The path of a file directly in a normalised folder.
std::string FileIn(const std::string& normalisedFolder, const std::string& name, const char* extension) {
  const PathParts parts = SplitPath(normalisedFolder);
  return JoinPath(parts.drive, parts.directory, name, extension);
}

}  // namespace

void BatchDriver::FinishMap(const CTifData& data, const Output& output) {
  FinishViewers(output);
  const bool isWithoutKml = IsWithoutKml(output);
  if (isWithoutKml) {
    LeaveOutKml(data, output);
  } else {
    FinishKml(output);
  }
  MakePicture(data, output);
  if (m_vOrthophotos.size() > 1) MakeIndex(output.index);
  const std::string document = FileIn(output.normalised, kLocalDocument, "kml");
  if (!isWithoutKml && !m_files.Exists(document)) m_audit.Fail("could not make " + document);
}

// Whether the tiler made the map so. What an earlier one left of a tiler that failed is as it was.
bool BatchDriver::IsWithoutKml(const Output& output) {
  if (m_settings.tiles != tiler::TileFormat::kWebp) return false;
  const auto page = ReadPage(output.index);
  return page && !page->hasDocuments;
}

// Documents of an earlier job would lead to tiles that are there no more.
void BatchDriver::LeaveOutKml(const CTifData& data, const Output& output) {
  for (const char* name : {kLocalDocument, kWebDocument}) {
    m_files.Delete(FileIn(output.normalised, name, "kml"));
  }
  Log(data.m_strFileName + ": no KML is made, because Google Earth does not show WebP images");
}

// Shows the map page, which needs a key, or the tutorial, or in its place the page that needs none; the other
// viewer page never stays.
void BatchDriver::FinishViewers(const Output& output) {
  const std::string googleMaps = FileIn(output.normalised, "googlemaps", "html");
  if (m_files.Exists(googleMaps)) {
    if (!m_settings.googleApiKey.empty()) {
      m_host.NavigatePreview(googleMaps);
    } else {
      m_files.Delete(googleMaps);
      const std::string map = FileIn(output.normalised, "leaflet", "html");
      const bool isShown = m_settings.showFinishedMap && m_files.Exists(map);
      m_host.NavigatePreview(isShown ? map : m_tools.folder + "\\tutorial.html");
    }
  }
  m_host.PumpMessages();
  m_files.Delete(FileIn(output.normalised, "openlayers", "html"));
}

void BatchDriver::FinishKml(const Output& output) {
  const std::string local = FileIn(output.normalised, kLocalDocument, "kml");
  RenameDocument(FileIn(output.normalised, "doc", "kml"), local);
  if (m_settings.targetUrl.empty()) return;
  const std::string web = FileIn(output.normalised, kWebDocument, "kml");
  // A copy of an earlier job has its absolute links already.
  if (!m_files.Copy(local, web)) {
    m_audit.Fail("could not write " + web);
  } else if (!m_steps.RewriteLinks(web, m_settings.targetUrl, output.webFolder) || !m_files.Exists(web)) {
    // The rewriter's last step, putting the new text in place, may fail in silence.
    m_audit.Fail("could not write the links of " + web);
  }
}

// A file that an earlier job left under the new name stays. That does no harm as long as it says the same.
void BatchDriver::RenameDocument(const std::string& document, const std::string& local) {
  if (m_files.Rename(document, local) || !m_files.Exists(document) || !m_files.Exists(local)) return;
  const auto text = m_files.Read(document, kMaxDocument);
  if (text && text == m_files.Read(local, kMaxDocument)) return;
  m_audit.Fail(local + " is of an earlier job with another result and was kept; the new one is " + document);
}

void BatchDriver::MakePicture(const CTifData& data, const Output& output) {
  const std::string picture = NamePicture(output);
  std::string reason;
  if (!m_steps.MakePreview(data.m_strFileName, picture, reason)) {
    m_audit.Fail("could not make the picture " + picture + (reason.empty() ? "" : ": " + reason));
  }
}

// The picture is called as the map is, unless that is an orthophoto or another picture of the user.
std::string BatchDriver::NamePicture(const Output& output) {
  std::string name = FileIn(output.normalised, output.mapName, "jpg");
  while (m_files.Exists(name) && (m_files.IsProtected(name) || !m_steps.IsPreview(name))) {
    name = KVT_TranslatePath(name, nullptr, nullptr, "2");
  }
  return name;
}
