#include "job/georeference.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <map>

#include "support/rasters.h"
#include "support/temporary_folder.h"

namespace {

class Georeference : public testing::Test {
 protected:
  static void SetUpTestSuite() { GDALAllRegister(); }

  int Read(const RasterRecipe& recipe, const std::string& name = "a.tif") {
    MakeRaster(m_folder.Path(name), recipe);
    return ReadPath(m_folder.Path(name));
  }
  int ReadPath(const std::string& path) {
    m_corners.resize(7);
    return ReadTifGeoInfo(path, m_corners, m_target, m_source);
  }
  static void ExpectRefused(int result) { EXPECT_EQ(result, 0); }

  TemporaryFolder m_folder;
  std::vector<TifCorner> m_corners;
  std::string m_target;
  std::string m_source;
};

std::map<std::string, std::string> CornerMetadata() {
  return {{"UL_LON", "9.0"}, {"UL_LAT", "45.2"}, {"LL_LON", "9.0"}, {"LL_LAT", "45.0"},
          {"UR_LON", "9.3"}, {"UR_LAT", "45.2"}, {"LR_LON", "9.3"}, {"LR_LAT", "45.0"}};
}

TEST_F(Georeference, GivesAFileInItsZoneTheSameTextTwice) {
  EXPECT_EQ(Read({}), 4);
  EXPECT_EQ(m_source, "EPSG:32632");
  EXPECT_EQ(m_target, "EPSG:32632");
  ASSERT_EQ(m_corners.size(), 4U);
}

TEST_F(Georeference, OrdersCornersUpperLeftLowerLeftUpperRightLowerRight) {
  ASSERT_EQ(Read({}), 4);
  const double pixels[] = {0, 0, 100, 100};
  const double lines[] = {0, 80, 0, 80};
  const double eastings[] = {500000, 500000, 500050, 500050};
  const double northings[] = {5000000, 4999960, 5000000, 4999960};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(m_corners[i].dfPixel, pixels[i]);
    EXPECT_EQ(m_corners[i].dfLine, lines[i]);
    EXPECT_NEAR(m_corners[i].dfEasting, eastings[i], 1e-3);
    EXPECT_NEAR(m_corners[i].dfNorthing, northings[i], 1e-3);
  }
  EXPECT_NEAR(m_corners[0].dfLon, 9.0, 1e-9);
  EXPECT_NEAR(m_corners[0].dfLat, 45.15, 0.01);
}

TEST_F(Georeference, IgnoresRotation) {
  RasterRecipe recipe;
  ASSERT_EQ(Read(recipe), 4);
  const std::vector<TifCorner> upright = m_corners;
  recipe.geoTransform[2] = 0.1;
  recipe.geoTransform[4] = -0.1;
  ASSERT_EQ(Read(recipe), 4);
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(m_corners[i].dfLon, upright[i].dfLon);
}

TEST_F(Georeference, UsesAllEightMetadataCornersAsTheyStand) {
  RasterRecipe recipe;
  recipe.metadata = CornerMetadata();
  ASSERT_EQ(Read(recipe), 4);
  EXPECT_EQ(m_corners[0].dfLon, 9.0);
  EXPECT_EQ(m_corners[0].dfLat, 45.2);
  EXPECT_EQ(m_corners[1].dfLat, 45.0);
  EXPECT_EQ(m_corners[2].dfLon, 9.3);
  EXPECT_EQ(m_corners[3].dfLine, 80);
}

TEST_F(Georeference, TakesTheGeotransformUnlessAllEightKeysConvert) {
  ASSERT_EQ(Read({}), 4);
  const std::vector<TifCorner> computed = m_corners;
  for (const auto& [key, value] : CornerMetadata()) {
    for (const char* bad : {"", "nine", "9.0E", "nan", "1e999"}) {
      RasterRecipe recipe;
      recipe.metadata = CornerMetadata();
      recipe.metadata[key] = bad;
      ASSERT_EQ(Read(recipe), 4) << key;
      EXPECT_EQ(m_corners[0].dfLon, computed[0].dfLon) << key << "=" << bad;
      EXPECT_EQ(m_corners[3].dfLat, computed[3].dfLat) << key << "=" << bad;
    }
  }
  RasterRecipe recipe;
  recipe.metadata = {{"UL_LON", "9.0"}, {"UL_LAT", "45.2"}};
  ASSERT_EQ(Read(recipe), 4);
  EXPECT_EQ(m_corners[0].dfLon, computed[0].dfLon);
}

TEST_F(Georeference, FindsTheZoneOfTheCentre) {
  struct Case {
    double longitude;
    double latitude;
    const char* target;
  };
  const Case cases[] = {{-0.1, 51.0, "EPSG:32630"},    {0.0, 51.0, "EPSG:32631"},
                        {9.0, 45.0, "EPSG:32632"},     {9.0, 0.0, "EPSG:32632"},
                        {9.0, -0.001, "EPSG:32732"},   {-180.0, 10.0, "EPSG:32601"},
                        {179.99, -10.0, "EPSG:32760"}, {-70.5, -33.0, "EPSG:32719"}};
  for (const Case& each : cases) {
    RasterRecipe recipe;
    recipe.epsg = 4326;
    // Symmetrical around the centre, with steps that doubles hold exactly.
    const double step = 1.0 / 65536;
    recipe.geoTransform = {each.longitude - 50 * step, step, 0, each.latitude + 40 * step, 0, -step};
    ASSERT_EQ(Read(recipe), 4) << each.longitude;
    EXPECT_EQ(m_source, "EPSG:4326");
    EXPECT_EQ(m_target, each.target) << each.longitude << " " << each.latitude;
  }
}

TEST_F(Georeference, RefusesCentresOutsideTheSixtyZones) {
  for (const double longitude : {180.0, 185.0, 359.0, -180.1, -187.0}) {
    RasterRecipe recipe;
    recipe.epsg = 4326;
    recipe.geoTransform = {longitude, 1e-5, 0, 10.0, 0, -1e-5};
    ExpectRefused(Read(recipe));
  }
}

TEST_F(Georeference, RefusesCoordinatesThatCannotBeTransformed) {
  RasterRecipe recipe;
  recipe.geoTransform = {1e30, 1, 0, 1e30, 0, -1};
  ExpectRefused(Read(recipe));
}

TEST_F(Georeference, RefusesAFileWithoutReferenceOrGeotransform) {
  RasterRecipe recipe;
  recipe.epsg = 0;
  ExpectRefused(Read(recipe));
  recipe = {};
  recipe.geoTransform.clear();
  ExpectRefused(Read(recipe));
}

// A virtual raster in a UTM zone whose reference has names and an authority node of the test's own.
std::string MakeVrt(const std::string& name, const std::string& names, const std::string& authority) {
  const auto quoted = [](const std::string& text) { return "&quot;" + text + "&quot;"; };
  return "<VRTDataset rasterXSize=\"10\" rasterYSize=\"10\"><SRS>PROJCS[" + quoted(name) + ",GEOGCS[" +
         quoted(names) + ",DATUM[" + quoted(names) + ",SPHEROID[" + quoted(names) +
         ",6378137,298.25]],PRIMEM[" + quoted(names) + ",0],UNIT[" + quoted(names) +
         ",0.0174532925199433]],PROJECTION[" + quoted("Transverse_Mercator") + "],PARAMETER[" +
         quoted("latitude_of_origin") + ",0],PARAMETER[" + quoted("central_meridian") + ",9],PARAMETER[" +
         quoted("scale_factor") + ",0.9996],PARAMETER[" + quoted("false_easting") + ",500000],PARAMETER[" +
         quoted("false_northing") + ",0],UNIT[" + quoted(names) + ",1],AXIS[" + quoted(names) +
         ",EAST],AXIS[" + quoted(names) + ",NORTH]" + authority +
         "]</SRS><GeoTransform>500000, 1, 0, 5000000, 0, -1</GeoTransform>"
         "<VRTRasterBand dataType=\"Byte\" band=\"1\"/></VRTDataset>";
}

constexpr char kAuthority[] = ",AUTHORITY[&quot;EPSG&quot;,&quot;12345&quot;]";

TEST_F(Georeference, RefusesAReferenceWithoutAuthority) {
  WriteFile(m_folder.Path("with.vrt"), MakeVrt("mine", "mine", kAuthority));
  EXPECT_EQ(ReadPath(m_folder.Path("with.vrt")), 4);
  EXPECT_EQ(m_source, "EPSG:12345");
  WriteFile(m_folder.Path("without.vrt"), MakeVrt("mine", "mine", ""));
  ExpectRefused(ReadPath(m_folder.Path("without.vrt")));
}

TEST_F(Georeference, RefusesAProjectionTextLongerThanItsBuffer) {
  const std::string names(440, 'n');
  const auto projectionLength = [&](size_t nameLength) {
    WriteFile(m_folder.Path("a.vrt"), MakeVrt(std::string(nameLength, 'z'), names, kAuthority));
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(m_folder.Path("a.vrt").c_str()));
    return std::string(dataset->GetProjectionRef()).size();
  };
  const size_t fitting = 100 + 4095 - projectionLength(100);
  ASSERT_EQ(projectionLength(fitting), 4095U);
  EXPECT_EQ(ReadPath(m_folder.Path("a.vrt")), 4);
  ASSERT_EQ(projectionLength(fitting + 1), 4096U);
  ExpectRefused(ReadPath(m_folder.Path("a.vrt")));
}

TEST_F(Georeference, RefusesWhatIsNoRaster) {
  WriteFile(m_folder.Path("empty.tif"), "");
  WriteFile(m_folder.Path("text.tif"), "not a raster");
  for (const std::string& path : {m_folder.Path("empty.tif"), m_folder.Path("text.tif"),
                                  m_folder.Path("none.tif"), m_folder.Path(), std::string()}) {
    ExpectRefused(ReadPath(path));
    EXPECT_TRUE(m_corners.empty());
  }
}

TEST_F(Georeference, ReadsOrRefusesATruncatedFileWithoutHarm) {
  ASSERT_EQ(Read({}), 4);
  const std::string whole = ReadFile(m_folder.Path("a.tif"));
  for (size_t length = 0; length < whole.size(); length += 97) {
    WriteFile(m_folder.Path("cut.tif"), whole.substr(0, length));
    const int result = ReadPath(m_folder.Path("cut.tif"));
    EXPECT_TRUE(result == 0 || result == 4) << length;
  }
}

TEST_F(Georeference, LeavesNoDatasetOpen) {
  int before = 0;
  GDALDataset::GetOpenDatasets(&before);
  Read({});
  RasterRecipe broken;
  broken.epsg = 0;
  Read(broken);
  int after = 0;
  GDALDataset::GetOpenDatasets(&after);
  EXPECT_EQ(after, before);
}

TEST(TifData, IsCopiedByValueAndDestroyedThroughItsBase) {
  RasterRecipe recipe;
  TemporaryFolder folder;
  MakeRaster(folder.Path("a.tif"), recipe);
  CTifData data;
  ASSERT_TRUE(ReadTifData(folder.Path("a.tif"), data));
  const CTifData copy = data;
  EXPECT_EQ(copy.m_strFileName, folder.Path("a.tif"));
  EXPECT_EQ(copy.m_vCorners.size(), 4U);
  EXPECT_FALSE(ReadTifData(folder.Path("none.tif"), data));
}

}  // namespace
