#include "publish/remote_data_entry.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using Names = std::vector<std::string>;

static_assert(std::has_virtual_destructor_v<CRemoteDataEntry>);

TEST(RemoteDataEntry, SortsNamesByTheFirstKindTheyContain) {
  CRemoteDataEntry entry;
  for (const char* name :
       {"preview.jpg", "googlemaps.jpg", "x.kml.jpg", "doc.kml", "googlemaps.kml", "googlemaps.html", "a.JPG",
        "doc.KML", "GoogleMaps.html", "openlayers.html", "x.jpeg", "", ".", "..", "jpg", "my_kml_folder"}) {
    entry.AddName(name);
  }
  EXPECT_EQ(entry.m_jpg, (Names{"preview.jpg", "googlemaps.jpg", "x.kml.jpg", "jpg"}));
  EXPECT_EQ(entry.m_kml, (Names{"doc.kml", "my_kml_folder"}));
  EXPECT_EQ(entry.m_googlemaps, (Names{"googlemaps.kml", "googlemaps.html"}));
}

TEST(RemoteDataEntry, IsCompleteWithDateFolderAndAsManyPicturesAsKmlFiles) {
  CRemoteDataEntry entry("folder", "date");
  EXPECT_FALSE(entry.IsComplete()) << "nothing in it";
  entry.AddName("a.jpg");
  EXPECT_FALSE(entry.IsComplete()) << "no kml";
  entry.AddName("a.kml");
  EXPECT_TRUE(entry.IsComplete());
  entry.AddName("b.jpg");
  EXPECT_FALSE(entry.IsComplete()) << "two pictures, one kml";
  entry.AddName("b.kml");
  EXPECT_TRUE(entry.IsComplete());

  CRemoteDataEntry copy = entry;
  copy.m_date.clear();
  EXPECT_FALSE(copy.IsComplete());
  copy = entry;
  copy.m_folder.clear();
  EXPECT_FALSE(copy.IsComplete());
  EXPECT_TRUE(entry.IsComplete()) << "copies are apart";

  CRemoteDataEntry onlyKml("folder", "date");
  onlyKml.AddName("a.kml");
  EXPECT_FALSE(onlyKml.IsComplete());
}

}  // namespace
