#include "tiler/map_page.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tiler/page_template.h"

namespace tiler {
namespace {

bool Has(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// Two levels, 14 and 15, near the equator.
const Pyramid& Sample() {
  static const Pyramid pyramid({512, 300, 1000000.5, 2000000.25, 4.7, -4.7});
  return pyramid;
}

std::string PageWith(const std::string& title, const PageDocuments& documents = {}) {
  return MapPage(Sample(), title, documents, TileKinds(Sample(), TileFormat::kPng));
}

TEST(MapPage, TellsWhereTheTilesAre) {
  const std::string page = PageWith("t");
  EXPECT_TRUE(Has(page, "\"coarsest\": 14, \"finest\": 15, \"bounds\": [[17.")) << page;
  EXPECT_TRUE(
      Has(page, "\"levels\": {\"14\": [8600, 9009, 8601, 9009], \"15\": [17201, 18018, 17203, 18019]}"))
      << page;
}

TEST(MapPage, TellsTilesThatAreNotPng) {
  EXPECT_FALSE(Has(PageWith("t"), "\"tiles\""));
  EXPECT_TRUE(Has(MapPage(Sample(), "t", {}, TileKinds(Sample(), TileFormat::kWebp)),
                  "18019]}, \"tiles\": {\"kinds\": [\"webp\"], \"runs\": {}}, \"kml\""));
}

TEST(MapPage, LinksToTheDocumentsThatThereAre) {
  EXPECT_TRUE(Has(PageWith("t"), "\"kml\": {\"disk\": null, \"web\": null}"));
  EXPECT_TRUE(Has(PageWith("t", {"a b.kml", ""}), "\"kml\": {\"disk\": \"a b.kml\", \"web\": null}"));
  EXPECT_TRUE(Has(PageWith("t", {"a.kml", "w.kml"}), "{\"disk\": \"a.kml\", \"web\": \"w.kml\"}"));
}

TEST(MapPage, ShowsTheTitleAsItIs) {
  const std::string page = PageWith("a \"b\" \\ & <!--</script> @DATA@ %s\t\n\xC3\xA4");
  EXPECT_TRUE(Has(page, "<h1>a &quot;b&quot; \\ &amp; &lt;!--&lt;/script&gt; @DATA@ %s\t\n\xC3\xA4</h1>"));
  EXPECT_TRUE(Has(
      page, "{\"title\": \"a \\\"b\\\" \\\\ & \\u003c!--\\u003c/script> @DATA@ %s\\u0009\\u000a\xC3\xA4\","))
      << page;
}

TEST(MapPage, HasWhatItAsksFor) {
  const std::string page = PageWith("t");
  int asked = 0;
  for (std::size_t place = page.find("\"leaflet/"); place != std::string::npos;
       place = page.find("\"leaflet/", place + 1)) {
    const std::string name = page.substr(place + 9, page.find('"', place + 1) - place - 9);
    EXPECT_TRUE(std::any_of(PageFiles().begin(), PageFiles().end(), [&name](const PageFile& file) {
      return file.name == name;
    })) << name;
    ++asked;
  }
  EXPECT_EQ(asked, 7);
  for (const PageFile& file : PageFiles()) {
    EXPECT_GT(file.content.size(), 1000U) << file.name;
    // Would be asked for as well, by who has the developer tools open.
    EXPECT_FALSE(Has(file.content, "sourceMappingURL")) << file.name;
  }
}

TEST(FilledIn, LeavesWhatIsNoMark) {
  EXPECT_EQ(FilledIn("a@b.c @X@ @Y@@X@ @", {{"X", "@Y@"}, {"Y", "2"}}), "a@b.c @Y@ 2@Y@ @");
  EXPECT_EQ(FilledIn("", {{"X", "1"}}), "");
}

}  // namespace
}  // namespace tiler
