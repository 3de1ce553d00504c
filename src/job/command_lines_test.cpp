#include "job/command_lines.h"

#include <gtest/gtest.h>

namespace {

TilingRequest MakeRequest() {
  return {"C:\\t\\gdal2tiles.py", 0, "EPSG:32632", "My_map", "../", "", "D:\\maps\\a b.tif", "D:\\out\\maps"};
}

TEST(TilingArguments, HoldAllOptionsInOrder) {
  TilingRequest request = MakeRequest();
  request.googleApiKey = "KEY";
  EXPECT_EQ(FormatTilingArguments(request),
            " \"C:\\t\\gdal2tiles.py\" -a 0 -s EPSG:32632 -p mercator -t \"My_map\"  -k -u ../ -g KEY "
            "\"D:\\maps\\a b.tif\" \"D:\\out\\maps\"");
}

TEST(TilingArguments, LeaveTitleAndKeyOutWhenEmpty) {
  TilingRequest request = MakeRequest();
  request.mapName = "";
  EXPECT_EQ(FormatTilingArguments(request),
            " \"C:\\t\\gdal2tiles.py\" -a 0 -s EPSG:32632 -p mercator   -k -u ../  \"D:\\maps\\a b.tif\" "
            "\"D:\\out\\maps\"");
}

TEST(TilingArguments, LeaveOutTheScriptWhereThereIsNone) {
  TilingRequest request = MakeRequest();
  request.scriptPath = "";
  EXPECT_EQ(FormatTilingArguments(request),
            " -a 0 -s EPSG:32632 -p mercator -t \"My_map\"  -k -u ../  \"D:\\maps\\a b.tif\" "
            "\"D:\\out\\maps\"");
}

TEST(TilingArguments, PackTheColourIntoOneNumber) {
  TilingRequest request = MakeRequest();
  request.transparency = 0xFFFFFF;
  EXPECT_NE(FormatTilingArguments(request)->find(" -a 16777215 "), std::string::npos);
  request.transparency = 0x0000FF;
  EXPECT_NE(FormatTilingArguments(request)->find(" -a 255 "), std::string::npos);
}

TEST(TilingArguments, AreRefusedWhenTooLong) {
  TilingRequest request = MakeRequest();
  const size_t length = FormatTilingArguments(request)->size();
  request.inputPath += std::string(4095 - length, 'x');
  ASSERT_TRUE(FormatTilingArguments(request));
  EXPECT_EQ(FormatTilingArguments(request)->size(), 4095U);
  request.inputPath += 'x';
  EXPECT_EQ(FormatTilingArguments(request), std::nullopt);
}

TEST(TilingArguments, AreRefusedWhenTheKeyIsTooLong) {
  TilingRequest request = MakeRequest();
  request.googleApiKey = std::string(1020, 'k');
  EXPECT_TRUE(FormatTilingArguments(request));
  request.googleApiKey += 'k';
  EXPECT_FALSE(FormatTilingArguments(request));
}

CTifData MakeData() {
  CTifData data;
  data.m_strFileName = "D:\\maps\\a.tif";
  data.m_strTargetEPSG = "EPSG:32632";
  data.m_vCorners = {{0, 0, 9, 45, 500000.5, 5000000.25},
                     {0, 200, 9, 44, 500000.5, 4999900.25},
                     {100, 0, 9.1, 45, 500050.5, 5000000.25},
                     {100, 200, 9.1, 44, 500050.5, 4999900.25}};
  return data;
}

TEST(TranslateArguments, TieTheFourCornersToTheTargetReference) {
  EXPECT_EQ(FormatTranslateArguments(MakeData(), "D:\\maps\\a.vrt"),
            " -of VRT -a_srs EPSG:32632"
            " -gcp 0 0 500000.50000000000000000000 5000000.25000000000000000000"
            " -gcp 0 200 500000.50000000000000000000 4999900.25000000000000000000"
            " -gcp 100 0 500050.50000000000000000000 5000000.25000000000000000000"
            " -gcp 100 200 500050.50000000000000000000 4999900.25000000000000000000"
            " \"D:\\maps\\a.tif\" \"D:\\maps\\a.vrt\"");
}

TEST(TranslateArguments, AreRefusedWhenTooLong) {
  CTifData data = MakeData();
  data.m_strFileName += std::string(4095 - FormatTranslateArguments(data, "a.vrt")->size(), 'x');
  ASSERT_TRUE(FormatTranslateArguments(data, "a.vrt"));
  EXPECT_EQ(FormatTranslateArguments(data, "a.vrt")->size(), 4095U);
  data.m_strFileName += 'x';
  EXPECT_FALSE(FormatTranslateArguments(data, "a.vrt"));
}

TEST(WarpArguments, NameReferenceInputAndOutput) {
  EXPECT_EQ(FormatWarpArguments("EPSG:32632", "D:\\maps\\a.vrt", "D:\\maps\\a2.vrt"),
            " -of VRT -t_srs EPSG:32632 \"D:\\maps\\a.vrt\" \"D:\\maps\\a2.vrt\"");
}

TEST(WarpArguments, AreRefusedWhenTooLong) {
  std::string path = "x";
  path += std::string(4095 - FormatWarpArguments("EPSG:32632", path, "a")->size(), 'x');
  ASSERT_TRUE(FormatWarpArguments("EPSG:32632", path, "a"));
  EXPECT_EQ(FormatWarpArguments("EPSG:32632", path, "a")->size(), 4095U);
  EXPECT_FALSE(FormatWarpArguments("EPSG:32632", path + 'x', "a"));
}

}  // namespace
