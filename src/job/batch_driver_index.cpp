// The driver: what shows several maps together, in the folder that holds theirs.
#include <optional>
#include <vector>

#include "job/batch_driver.h"
#include "tiler/index_page.h"
#include "tiler/map_page.h"

namespace {

// In bytes. The tiler's pages are smaller.
constexpr size_t kMaxPage = 4 << 20;

// The rules by which the upload's survey of a server sorts names know documents by "kml" in small letters.
// This one is none of a map.
constexpr char kDocument[] = "googleearth_all.KML";
constexpr char kWebDocument[] = "googleearth_all_web.KML";

std::string WithSlash(const std::string& url) {
  return url.ends_with('/') ? url : url + "/";
}

}  // namespace

// After each map, so that a job that is aborted leaves an index of what there is.
void BatchDriver::MakeIndex() {
  const std::string folder = m_settings.targetFolder + "\\";
  std::vector<tiler::MapDescription> maps;
  for (size_t i = 0; i < m_vOrthophotos.size(); ++i) {
    const auto page = m_files.Read(OutputFolder(i) + "\\leaflet.html", kMaxPage);
    const auto map = page ? tiler::DescriptionIn(*page, "tile_" + std::to_string(i)) : std::nullopt;
    if (map) maps.push_back(*map);
  }
  const std::string index = folder + "index.html";
  // A page of the user's own stays.
  const bool isTaken =
      m_files.Exists(index) && !tiler::IsIndexPage(m_files.Read(index, kMaxPage).value_or(""));
  if (maps.empty() || isTaken) return;
  const std::string needed = folder + tiler::kPageFolder;
  bool isWritten = m_files.CreateFolder(needed);
  for (const tiler::PageFile& file : tiler::PageFiles()) {
    isWritten = isWritten && m_steps.WriteText(needed + "\\" + file.name, std::string(file.content));
  }
  isWritten =
      isWritten && m_steps.WriteText(folder + kDocument, tiler::IndexKml(maps, "googleearth_loc.kml", ""));
  if (!m_settings.targetUrl.empty()) {
    isWritten = isWritten &&
                m_steps.WriteText(folder + kWebDocument, tiler::IndexKml(maps, "googleearth_web.kml",
                                                                         WithSlash(m_settings.targetUrl)));
  }
  isWritten = isWritten && m_steps.WriteText(index, tiler::IndexPage(maps));
  if (!isWritten && !m_host.IsClosed()) m_audit.Fail("could not write " + index);
}
