// The driver: what shows several maps together, in the folder that holds theirs.
#include <algorithm>
#include <optional>
#include <vector>

#include "job/batch_driver.h"
#include "tiler/index_page.h"
#include "tiler/map_page.h"

namespace {

// In bytes. The tiler's pages are smaller, and so is the index of thousands of them.
constexpr size_t kMaxPage = 64 << 20;

// The rules by which the upload's survey of a server sorts names know documents by "kml" in small letters.
// This one is none of a map.
constexpr char kDocument[] = "googleearth_all.KML";
constexpr char kWebDocument[] = "googleearth_all_web.KML";

std::string WithSlash(const std::string& url) {
  return url.ends_with('/') ? url : url + "/";
}

}  // namespace

// What the page of a map says of it.
std::optional<tiler::MapDescription> BatchDriver::ReadPage(size_t index) {
  const auto page = m_files.Read(OutputFolder(index) + "\\leaflet.html", kMaxPage);
  return page ? tiler::DescriptionIn(*page, "tile_" + std::to_string(index)) : std::nullopt;
}

// After each map, so that a job that is aborted leaves an index of what there is. The others may be of an
// earlier job.
void BatchDriver::MakeIndex(size_t finished) {
  for (size_t i = m_vPages.size(); i < m_vOrthophotos.size(); ++i) m_vPages.push_back(ReadPage(i));
  m_vPages[finished] = ReadPage(finished);
  std::vector<tiler::MapDescription> maps;
  for (const auto& page : m_vPages) {
    if (page) maps.push_back(*page);
  }
  const std::string index = m_settings.targetFolder + "\\index.html";
  // A page of the user's own stays.
  const bool isTaken =
      m_files.Exists(index) && !tiler::IsIndexPage(m_files.Read(index, kMaxPage).value_or(""));
  if (maps.empty() || isTaken) return;
  if (!WriteIndex(maps) && !m_host.IsClosed()) m_audit.Fail("could not write " + index);
}

bool BatchDriver::WriteIndex(const std::vector<tiler::MapDescription>& maps) {
  const std::string folder = m_settings.targetFolder + "\\";
  if (!WritePageFiles()) return false;
  const bool anyDocument =
      std::any_of(maps.begin(), maps.end(), [](const auto& map) { return map.hasDocuments; });
  if (!anyDocument) {
    m_files.Delete(folder + kDocument);
    m_files.Delete(folder + kWebDocument);
  } else if (!m_steps.WriteText(folder + kDocument, tiler::IndexKml(maps, "googleearth_loc.kml", "")) ||
             (!m_settings.targetUrl.empty() &&
              !m_steps.WriteText(folder + kWebDocument, tiler::IndexKml(maps, "googleearth_web.kml",
                                                                        WithSlash(m_settings.targetUrl))))) {
    return false;
  }
  return m_steps.WriteText(folder + "index.html", tiler::IndexPage(maps));
}

// Once in a job: they are always the same.
bool BatchDriver::WritePageFiles() {
  const std::string folder = m_settings.targetFolder + "\\" + tiler::kPageFolder;
  m_bPageFilesWritten =
      m_bPageFilesWritten ||
      (m_files.CreateFolder(folder) &&
       std::all_of(tiler::PageFiles().begin(), tiler::PageFiles().end(), [&](const tiler::PageFile& file) {
         return m_steps.WriteText(folder + "\\" + file.name, std::string(file.content));
       }));
  return m_bPageFilesWritten;
}
