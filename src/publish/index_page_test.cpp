#include "publish/index_page.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace {

constexpr char kUrl[] = "www.maps.example/ortho";
constexpr char kDate[] = "2026-11-21 15:04";

std::string Expected(const std::string& name) {
  return ReadFile(std::string(PUBLISH_TEST_DATA) + "/" + name);
}

CRemoteDataEntry MakeEntry(const std::string& folder, const std::string& date,
                           const std::vector<std::string>& names) {
  CRemoteDataEntry entry(folder, date);
  for (const std::string& name : names) entry.AddName(name);
  return entry;
}

CRemoteDataEntry SingleEntry() {
  return MakeEntry("single", "2014/03/07 10:05", {"preview.jpg", "doc.kml", "googlemaps.html"});
}

std::string Block(const std::string& page) {
  const std::string empty = MakeIndexPage({}, kUrl, kDate);
  const std::string end = "</BODY>\n</HTML>\n";
  const size_t head = empty.size() - end.size();
  EXPECT_EQ(page.substr(0, head), empty.substr(0, head));
  EXPECT_EQ(page.substr(page.size() - end.size()), end);
  return page.substr(head, page.size() - empty.size());
}

TEST(IndexPage, IsWholeWithoutDataSets) {
  EXPECT_EQ(MakeIndexPage({}, kUrl, kDate), Expected("index_empty.html"));
}

TEST(IndexPage, HasABlockForEachDataSetInTheirOrder) {
  const std::vector<CRemoteDataEntry> entries = {
      SingleEntry(),
      MakeEntry("tiles", "2014/03/08 11:06",
                {"a.jpg", "doc.kml", "googlemaps.html", "b.jpg", "doc.kml", "googlemaps.html"}),
      MakeEntry("my data", "2014/03/09 12:07", {"a b.jpg", "my doc.kml"})};
  EXPECT_EQ(MakeIndexPage(entries, kUrl, kDate), Expected("index_plain.html"));
}

TEST(IndexPage, LeavesOutWhatIsNotComplete) {
  const std::vector<CRemoteDataEntry> entries = {
      MakeEntry("two pictures", "2014/03/07 10:05", {"a.jpg", "b.jpg", "doc.kml"}),
      MakeEntry("no date", "", {"a.jpg", "doc.kml"}), MakeEntry("empty", "2014/03/07 10:05", {})};
  EXPECT_EQ(MakeIndexPage(entries, kUrl, kDate), Expected("index_empty.html"));
}

TEST(IndexPage, IsNotBrokenByNames) {
  const std::vector<CRemoteDataEntry> entries = {
      MakeEntry("<b>\"x\" onload='y'", "<2014>", {"a&b#c.jpg", "100%.kml", "googlemaps?caf\xE9.html"}),
      MakeEntry("c:caf\xE9", "2014/03/07 10:05", {" x\\y.jpg ", "\n.kml"})};
  EXPECT_EQ(MakeIndexPage(entries, "m.example/a&b", kDate), Expected("index_hostile.html"));
}

TEST(IndexPage, LinksNoMapWhenAFolderHasSeveral) {
  CRemoteDataEntry entry = SingleEntry();
  entry.AddName("googlemaps2.html");
  const std::string block = Block(MakeIndexPage({entry}, kUrl, kDate));
  EXPECT_EQ(block.find("Maps"), std::string::npos) << block;
  EXPECT_NE(block.find(">KML</a>"), std::string::npos) << block;
}

TEST(IndexPage, LinksNothingWithoutAName) {
  CRemoteDataEntry single = SingleEntry();
  single.m_kml = {""};
  single.m_googlemaps = {""};
  EXPECT_EQ(Block(MakeIndexPage({single}, kUrl, kDate)).find("<a "), std::string::npos);

  CRemoteDataEntry tiles = single;
  tiles.m_jpg = {"a.jpg", "b.jpg"};
  tiles.m_kml = {"", "doc.kml"};
  tiles.m_googlemaps = {"", "", "googlemaps.html"};
  const std::string block = Block(MakeIndexPage({tiles}, kUrl, kDate));
  EXPECT_NE(block.find("<ul><li>Created: 2014/03/07 10:05</p></li>\n<li>\n"
                       "<a href=\"http://www.maps.example/ortho/single/tile_1/doc.kml\" target=\"_blank\" "
                       "download>KML 1</a>&nbsp|&nbsp</li>\n<li>\n"
                       "<a href=\"http://www.maps.example/ortho/single/tile_2/googlemaps.html\" "
                       "target=\"_blank\">Map 2</a>&nbsp|&nbsp</li>\n</ul></div>\n"),
            std::string::npos)
      << block;
}

TEST(IndexPage, HasItsAddressBesideTheFolders) {
  EXPECT_EQ(IndexPageAddress(kUrl), "http://www.maps.example/ortho/index.html");
}

}  // namespace
