#include "tiler/warp_options.h"

#include <gtest/gtest.h>

#include "tiler/tiler_error.h"

namespace tiler {
namespace {

constexpr const char* kWarped =
    "<VRTDataset rasterXSize=\"1\" rasterYSize=\"1\">"
    "<VRTRasterBand band=\"1\"/><VRTRasterBand band=\"2\"/><BlockXSize>512</BlockXSize>"
    "<GDALWarpOptions><Option name=\"INIT_DEST\">0</Option><Option "
    "name=\"OTHER\">x</Option></GDALWarpOptions>"
    "</VRTDataset>";

// Without line breaks and indents.
std::string Dense(const std::string& xml) {
  std::string dense;
  for (std::size_t i = 0; i < xml.size(); ++i) {
    if (xml[i] == '\n') {
      while (i + 1 < xml.size() && xml[i + 1] == ' ') ++i;
    } else {
      dense += xml[i];
    }
  }
  return dense;
}

TEST(WithNodata, LetsTheImageDecideOnItsColour) {
  EXPECT_TRUE(Dense(WithNodata(kWarped, {}))
                  .find("<GDALWarpOptions><Option name=\"UNIFIED_SRC_NODATA\">YES</Option>"
                        "<Option name=\"INIT_DEST\">NO_DATA</Option><Option name=\"INIT_DEST\">0</Option>"
                        "<Option name=\"OTHER\">x</Option></GDALWarpOptions>") != std::string::npos);
}

TEST(WithNodata, FillsWithTheTransparentColour) {
  EXPECT_TRUE(Dense(WithNodata(kWarped, {255, 0, 7}))
                  .find("<GDALWarpOptions><Option name=\"UNIFIED_SRC_NODATA\">YES</Option>"
                        "<Option name=\"INIT_DEST\">255,0,7</Option><Option name=\"OTHER\">x</Option>"
                        "</GDALWarpOptions>") != std::string::npos);
}

TEST(WithNodata, LeavesWhatIsNotWarped) {
  const std::string plain = "<VRTDataset><VRTRasterBand band=\"1\"/></VRTDataset>";
  EXPECT_EQ(WithNodata(plain, {1}), plain);
  EXPECT_EQ(WithAlphaBand(plain, 1), plain);
}

TEST(WithAlphaBand, HasItBehindTheOthers) {
  const std::string xml = Dense(WithAlphaBand(kWarped, 2));
  EXPECT_TRUE(xml.find("<VRTRasterBand band=\"2\" />"
                       "<VRTRasterBand dataType=\"Byte\" band=\"3\" subClass=\"VRTWarpedRasterBand\">"
                       "<ColorInterp>Alpha</ColorInterp></VRTRasterBand><BlockXSize>512</BlockXSize>") !=
              std::string::npos)
      << xml;
  EXPECT_TRUE(xml.find("<Option name=\"OTHER\">x</Option><DstAlphaBand>3</DstAlphaBand>"
                       "<Option name=\"INIT_DEST\">0</Option></GDALWarpOptions>") != std::string::npos)
      << xml;
}

TEST(WithAbsoluteSource, MeansTheSameImageFromAnywhere) {
  const auto made = [](const std::string& attribute, const std::string& name) {
    return WithAbsoluteSource("<VRTDataset><GDALWarpOptions><SourceDataset" + attribute + ">" + name +
                                  "</SourceDataset></GDALWarpOptions></VRTDataset>",
                              "/in/some folder");
  };
  const auto beside = made(" relativeToVRT=\"1\"", "a.vrt");
  ASSERT_TRUE(beside);
  // With the separator of the system.
  EXPECT_EQ(beside->path.substr(0, 15), "/in/some folder");
  EXPECT_EQ(beside->path.substr(16), "a.vrt");
  const std::string element = "<SourceDataset relativeToVRT=\"0\">" + beside->path + "</SourceDataset>";
  EXPECT_NE(Dense(beside->xml).find(element), std::string::npos) << beside->xml;
  EXPECT_EQ(made(" relativeToVRT=\"0\"", "/other/a.vrt")->path, "/other/a.vrt");
  EXPECT_EQ(made("", "/other/a.vrt")->path, "/other/a.vrt");
}

TEST(WithAbsoluteSource, IsNothingWhereNoImageIsWarped) {
  EXPECT_FALSE(WithAbsoluteSource("<VRTDataset><VRTRasterBand band=\"1\"/></VRTDataset>", "/in"));
  EXPECT_FALSE(WithAbsoluteSource("<VRTDataset><GDALWarpOptions/></VRTDataset>", "/in"));
}

TEST(WarpOptions, RefuseWhatIsNoDescription) {
  for (const char* text : {"", "<", "<Other/>"}) {
    EXPECT_THROW(WithNodata(text, {}), TilerError) << text;
    EXPECT_THROW(WithAlphaBand(text, 3), TilerError) << text;
    EXPECT_THROW(WithAbsoluteSource(text, "/in"), TilerError) << text;
  }
}

}  // namespace
}  // namespace tiler
