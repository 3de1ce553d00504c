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
  recipe.geoTransform = {700000.0, 0.5, 0.0, 5000000.0, 0.0, -0.5};
  ASSERT_EQ(Read(recipe), 4);
  const std::vector<TifCorner> upright = m_corners;
  recipe.geoTransform[2] = 0.1;
  recipe.geoTransform[4] = -0.1;
  ASSERT_EQ(Read(recipe), 4);
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(m_corners[i].dfLon, upright[i].dfLon);
    EXPECT_EQ(m_corners[i].dfLat, upright[i].dfLat);
  }
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

TEST_F(Georeference, TakesZoneAndProjectedCornersFromTheMetadata) {
  // By its geotransform the image lies six degrees further east.
  RasterRecipe recipe;
  recipe.metadata = {{"UL_LON", "2.9"}, {"UL_LAT", "45.2"}, {"LL_LON", "2.9"}, {"LL_LAT", "45.0"},
                     {"UR_LON", "3.1"}, {"UR_LAT", "45.2"}, {"LR_LON", "3.1"}, {"LR_LAT", "45.0"}};
  ASSERT_EQ(Read(recipe), 4);
  EXPECT_EQ(m_source, "EPSG:32632");
  EXPECT_EQ(m_target, "EPSG:32631");
  const double pixels[] = {0, 0, 100, 100};
  const double lines[] = {0, 80, 0, 80};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(m_corners[i].dfPixel, pixels[i]);
    EXPECT_EQ(m_corners[i].dfLine, lines[i]);
    // A tenth of a degree beside the central meridian of zone 31.
    EXPECT_NEAR(m_corners[i].dfEasting, pixels[i] == 0 ? 492130 : 507870, 20);
    EXPECT_NEAR(m_corners[i].dfNorthing, lines[i] == 0 ? 5005150 : 4982940, 100);
  }
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
    EXPECT_EQ(m_source, "EPSG:4326") << "what was known is kept";
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

std::string Quoted(const std::string& text) {
  return "&quot;" + text + "&quot;";
}

// A virtual raster in UTM zone 32 on an ellipsoid of its own, and with names and an authority of the test's.
std::string MakeVrt(const std::string& name, const std::string& names, const std::string& authority) {
  return "<VRTDataset rasterXSize=\"10\" rasterYSize=\"10\"><SRS>PROJCS[" + Quoted(name) + ",GEOGCS[" +
         Quoted(names) + ",DATUM[" + Quoted(names) + ",SPHEROID[" + Quoted(names) +
         ",6378137,298.25]],PRIMEM[" + Quoted(names) + ",0],UNIT[" + Quoted(names) +
         ",0.0174532925199433]],PROJECTION[" + Quoted("Transverse_Mercator") + "],PARAMETER[" +
         Quoted("latitude_of_origin") + ",0],PARAMETER[" + Quoted("central_meridian") + ",9],PARAMETER[" +
         Quoted("scale_factor") + ",0.9996],PARAMETER[" + Quoted("false_easting") + ",500000],PARAMETER[" +
         Quoted("false_northing") + ",0],UNIT[" + Quoted(names) + ",1],AXIS[" + Quoted(names) +
         ",EAST],AXIS[" + Quoted(names) + ",NORTH]" + authority +
         "]</SRS><GeoTransform>500000, 1, 0, 5000000, 0, -1</GeoTransform>"
         "<VRTRasterBand dataType=\"Byte\" band=\"1\"/></VRTDataset>";
}

std::string Authority(const std::string& code) {
  return ",AUTHORITY[" + Quoted("EPSG") + "," + Quoted(code) + "]";
}

// The same in UTM zone 32 on WGS84, with authorities of reference, its geographic base and its datum.
std::string MakeUtmVrt(const std::string& own, const std::string& base, const std::string& datum,
                       const char* meridian = "9", const std::string& rest = "") {
  return "<VRTDataset rasterXSize=\"10\" rasterYSize=\"10\"><SRS>PROJCS[" + Quoted("Site") + ",GEOGCS[" +
         Quoted("WGS 84") + ",DATUM[" + Quoted("WGS_1984") + ",SPHEROID[" + Quoted("WGS 84") +
         ",6378137,298.257223563]" + datum + "],PRIMEM[" + Quoted("Greenwich") + ",0],UNIT[" +
         Quoted("degree") + ",0.0174532925199433]" + base + "],PROJECTION[" + Quoted("Transverse_Mercator") +
         "],PARAMETER[" + Quoted("latitude_of_origin") + ",0],PARAMETER[" + Quoted("central_meridian") + "," +
         meridian + "],PARAMETER[" + Quoted("scale_factor") + ",0.9996],PARAMETER[" +
         Quoted("false_easting") + ",500000],PARAMETER[" + Quoted("false_northing") + ",0],UNIT[" +
         Quoted("metre") + ",1]" + own + "]</SRS>" + rest +
         "<VRTRasterBand dataType=\"Byte\" band=\"1\"/></VRTDataset>";
}

constexpr char kPosition[] = "<GeoTransform>500000, 1, 0, 5000000, 0, -1</GeoTransform>";

TEST_F(Georeference, GivesAFileInItsZoneItsOwnCodeOrElseThatOfTheZone) {
  struct Case {
    std::string own;
    std::string base;
    std::string datum;
    const char* code;
  };
  const Case cases[] = {{Authority("12345"), Authority("4326"), "", "EPSG:12345"},
                        {"", Authority("4326"), "", "EPSG:32632"},
                        {"", "", Authority("6326"), "EPSG:32632"},
                        {"", Authority("4326"), Authority("6326"), "EPSG:32632"}};
  for (const Case& each : cases) {
    WriteFile(m_folder.Path("a.vrt"), MakeUtmVrt(each.own, each.base, each.datum, "9", kPosition));
    ASSERT_EQ(ReadPath(m_folder.Path("a.vrt")), 4) << each.code;
    EXPECT_EQ(m_source, each.code);
    EXPECT_EQ(m_target, each.code);
  }
  // Outside of every zone the code of a part is the only one there is.
  WriteFile(m_folder.Path("a.vrt"), MakeUtmVrt("", Authority("4326"), "", "9.1", kPosition));
  ASSERT_EQ(ReadPath(m_folder.Path("a.vrt")), 4);
  EXPECT_EQ(m_source, "EPSG:4326");
  EXPECT_EQ(m_target, "EPSG:32632");
}

TEST_F(Georeference, RefusesCornersInTheMetadataAlone) {
  std::string metadata = "<Metadata>";
  for (const auto& [key, value] : CornerMetadata()) {
    metadata += "<MDI key=\"" + key + "\">" + value + "</MDI>";
  }
  metadata += "</Metadata>";
  WriteFile(m_folder.Path("a.vrt"), MakeUtmVrt(Authority("32632"), "", "", "9", metadata));
  ExpectRefused(ReadPath(m_folder.Path("a.vrt")));
  WriteFile(m_folder.Path("a.vrt"), MakeUtmVrt(Authority("32632"), "", "", "9", kPosition + metadata));
  EXPECT_EQ(ReadPath(m_folder.Path("a.vrt")), 4);
}

TEST_F(Georeference, RefusesAReferenceWithoutAuthority) {
  WriteFile(m_folder.Path("with.vrt"), MakeVrt("mine", "mine", Authority("12345")));
  EXPECT_EQ(ReadPath(m_folder.Path("with.vrt")), 4);
  EXPECT_EQ(m_source, "EPSG:12345");
  WriteFile(m_folder.Path("without.vrt"), MakeVrt("mine", "mine", ""));
  ExpectRefused(ReadPath(m_folder.Path("without.vrt")));
}

TEST_F(Georeference, RefusesAProjectionTextLongerThanItsBuffer) {
  const std::string names(440, 'n');
  const auto projectionLength = [&](size_t nameLength) {
    WriteFile(m_folder.Path("a.vrt"), MakeVrt(std::string(nameLength, 'z'), names, Authority("12345")));
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
    EXPECT_EQ(m_corners.size(), static_cast<size_t>(result)) << length;
    if (result == 4) {
      EXPECT_EQ(m_target, "EPSG:32632") << length;
    }
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

TEST_F(Georeference, ExplainsARefusal) {
  const auto explain = [this](const std::string& name) { return ExplainRefusal(m_folder.Path(name)); };
  const auto explainRecipe = [&](const RasterRecipe& recipe) {
    MakeRaster(m_folder.Path("a.tif"), recipe);
    return explain("a.tif");
  };
  EXPECT_EQ(explainRecipe({}), "");
  RasterRecipe recipe;
  recipe.epsg = 0;
  EXPECT_EQ(explainRecipe(recipe), "it names no coordinate system");
  recipe = {};
  recipe.geoTransform.clear();
  EXPECT_EQ(explainRecipe(recipe), "it does not say where it lies");
  recipe.epsg = 4326;
  recipe.geoTransform = {200, 1e-5, 0, 10, 0, -1e-5};
  EXPECT_EQ(explainRecipe(recipe), "its centre lies in no UTM zone");
  WriteFile(m_folder.Path("a.vrt"), MakeVrt("mine", "mine", ""));
  EXPECT_EQ(explain("a.vrt"), "its coordinate system has no EPSG code");
  WriteFile(m_folder.Path("a.vrt"), MakeVrt(std::string(5000, 'n'), "mine", Authority("12345")));
  EXPECT_EQ(explain("a.vrt"), "its coordinate system is not understood");
  WriteFile(m_folder.Path("text.tif"), "not a raster");
  EXPECT_EQ(explain("text.tif"), "it cannot be opened: `" + m_folder.Path("text.tif") +
                                     "' not recognized as a supported file format");
  WriteFile(m_folder.Path("cut.tif"), "II*");
  const std::string cut = explain("cut.tif");
  EXPECT_EQ(cut.rfind("it cannot be opened: ", 0), 0U) << cut;
  EXPECT_NE(cut.find("Cannot read TIFF header"), std::string::npos) << "the driver's own words: " << cut;
  EXPECT_EQ(cut.find_first_of("\r\n"), std::string::npos);
}

TEST_F(Georeference, TellsWhenARotationIsLost) {
  const auto isLost = [this](const RasterRecipe& recipe) {
    MakeRaster(m_folder.Path("a.tif"), recipe);
    CTifData data;
    EXPECT_TRUE(ReadTifData(m_folder.Path("a.tif"), data));
    return data.m_bRotationLost;
  };
  RasterRecipe recipe;
  recipe.epsg = 3003;
  recipe.geoTransform = {1500000, 0.5, 0, 5000000, 0, -0.5};
  EXPECT_FALSE(isLost(recipe));
  recipe.geoTransform[2] = 0.001;  // 0.08 over the height: not a pixel
  EXPECT_FALSE(isLost(recipe));
  recipe.geoTransform[2] = 0.01;
  EXPECT_TRUE(isLost(recipe));
  recipe.geoTransform[2] = 0;
  recipe.geoTransform[4] = -0.01;
  EXPECT_TRUE(isLost(recipe));
  recipe.metadata = CornerMetadata();  // the corners themselves are rotated, or not
  EXPECT_FALSE(isLost(recipe));
  recipe.metadata.clear();
  recipe.epsg = 32632;  // the tiling script gets the file itself
  recipe.geoTransform[0] = 500000;
  EXPECT_FALSE(isLost(recipe));
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
