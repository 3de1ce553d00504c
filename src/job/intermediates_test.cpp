#include "job/intermediates.h"

#include <cpl_error.h>
#include <gtest/gtest.h>

#include <tuple>

namespace {

CTifData MakeData() {
  CTifData data;
  data.m_strFileName = "D:\\in\\B\xE4ume & Co.tif";
  data.m_vCorners = {
      {0, 0, 9, 45, 1, 2}, {0, 20.4, 9, 44, 3, 4}, {10, 0, 10, 45, 5, 6}, {10, 20.4, 10, 44, 7, 8}};
  return data;
}

std::string Point(const char* pixel, const char* line) {
  return std::string("<GCP Id=\"\" Pixel=\"") + pixel + "\" Line=\"" + line + "\" X=\"5E+05\" Y=\"5E+06\" />";
}

std::string FourPoints() {
  return Point("0.0000", "0.0000") + Point("0.0000", "20.0000") + Point("10.0000", "0.0000") +
         Point("10.0000", "20.0000");
}

std::string Source(const std::string& name, const char* relative = "1") {
  return std::string("<VRTRasterBand><SimpleSource><SourceFilename relativeToVRT=\"") + relative + "\">" +
         name + "</SourceFilename></SimpleSource></VRTRasterBand>";
}

constexpr char kName[] = "B\xC3\xA4ume &amp; Co.tif";

std::string Translation(const std::string& points, const std::string& bands) {
  return "<VRTDataset rasterXSize=\"10\" rasterYSize=\"20\"><GCPList>" + points + "</GCPList>" + bands +
         "</VRTDataset>";
}

std::string Warp(const std::string& source) {
  return "<VRTDataset subClass=\"VRTWarpedDataset\"><GDALWarpOptions><SourceDataset relativeToVRT=\"1\">" +
         source + "</SourceDataset></GDALWarpOptions></VRTDataset>";
}

TEST(Translations, AreKnownBySourceAndCorners) {
  EXPECT_TRUE(IsTranslationOf(MakeData(), Translation(FourPoints(), Source(kName) + Source(kName))));
}

TEST(Translations, AreKnownWhateverTheLettersOfTheName) {
  EXPECT_TRUE(IsTranslationOf(MakeData(), Translation(FourPoints(), Source("B\xC3\xA4UME &amp; co.TIF"))));
}

TEST(Translations, AreKnownInWhicheverCodeTheNameIsWritten) {
  CTifData data = MakeData();
  data.m_strFileName = "D:\\in\\Az\x80.tif";
  EXPECT_TRUE(IsTranslationOf(data, Translation(FourPoints(), Source("aZ\xE2\x82\xAC.TIF"))));
}

TEST(Translations, OfOtherFilesAreNotOurs) {
  for (const std::string& bands :
       {std::string(), Source("other.tif"), Source(kName) + Source("other.tif"), Source(kName, "0"),
        Source("D:\\in\\B\xE4ume &amp; Co.tif", "0"), Source("sub/" + std::string(kName))}) {
    EXPECT_FALSE(IsTranslationOf(MakeData(), Translation(FourPoints(), bands))) << bands;
  }
}

TEST(Translations, AreTiedAtTheFourCornersOnly) {
  const std::string points = FourPoints();
  for (const std::string& other :
       {std::string(), points + Point("5", "5"), Point("0", "0") + Point("0", "20") + Point("10", "0"),
        Point("0", "0") + Point("0", "20") + Point("10", "0") + Point("9", "20"),
        Point("0", "0") + Point("0", "20") + Point("10", "0") + Point("10", "x"),
        Point("0", "0") + Point("0", "20") + Point("10", "0") + "<GCP/>",
        "<GCP Line=\"0\"/>" + Point("0", "20") + Point("10", "0") + Point("10", "20"),
        "<GCP Pixel=\"0\"/>" + Point("0", "20") + Point("10", "0") + Point("10", "20"),
        Point("9", "9") + Point("0", "20") + Point("10", "0") + Point("10", "20")}) {
    EXPECT_FALSE(IsTranslationOf(MakeData(), Translation(other, Source(kName)))) << other;
  }
}

TEST(Translations, AreTiedWithinHalfAPixel) {
  const std::string others = Point("0", "20") + Point("10", "0") + Point("10", "20");
  for (const auto& [pixel, line, isOurs] :
       {std::tuple("0.5", "0.5", true), std::tuple("0.51", "0", false), std::tuple("0", "0.51", false)}) {
    EXPECT_EQ(IsTranslationOf(MakeData(), Translation(Point(pixel, line) + others, Source(kName))), isOurs);
  }
}

TEST(Warps, AreKnownByTheirSource) {
  EXPECT_TRUE(IsWarpOf("D:\\in\\a.vrt", Warp("a.vrt")));
  EXPECT_FALSE(IsWarpOf("D:\\in\\a.vrt", Warp("a2.vrt")));
  EXPECT_FALSE(IsWarpOf("D:\\in\\a.vrt", Warp("")));
  EXPECT_FALSE(IsWarpOf("D:\\in\\a.tif", Translation(FourPoints(), Source("a.tif"))));
}

TEST(Intermediates, ThatCannotBeReadAreNothingToTell) {
  static int errors = 0;
  CPLPushErrorHandler([](CPLErr, CPLErrorNum, const char*) { ++errors; });
  EXPECT_FALSE(IsTranslationOf(MakeData(), "<VRTDataset><GCPList></VRTDataset>"));
  CPLPopErrorHandler();
  EXPECT_EQ(errors, 0);
}

TEST(Intermediates, AreVirtualRasters) {
  const std::string translation = Translation(FourPoints(), Source(kName));
  for (const std::string& other :
       {std::string(), std::string("older"), std::string("<a/>"), "<a>" + translation + "</a>",
        translation.substr(0, translation.size() / 2), std::string("<VRTDataset/>")}) {
    EXPECT_FALSE(IsTranslationOf(MakeData(), other)) << other;
    EXPECT_FALSE(IsWarpOf("D:\\in\\a.vrt", other)) << other;
  }
}

}  // namespace
