#include "job/preview_image.h"

#include <gtest/gtest.h>

#include <filesystem>
#ifndef _WIN32
#include <unistd.h>
#endif

#include "support/rasters.h"
#include "support/temporary_folder.h"

namespace {

struct Size {
  int width = 0;
  int height = 0;
};

class PreviewImage : public testing::Test {
 protected:
  static void SetUpTestSuite() { GDALAllRegister(); }

  std::string Make(const RasterRecipe& recipe) {
    MakeRaster(m_folder.Path("in.tif"), recipe);
    return m_folder.Path("in.tif");
  }
  GDALDatasetUniquePtr Open(const std::string& name) {
    return GDALDatasetUniquePtr(GDALDataset::Open(m_folder.Path(name).c_str()));
  }
  TemporaryFolder m_folder;
};

TEST(PreviewSize, HoldsAboutSeventySevenThousandPixels) {
  struct Case {
    Size image;
    Size preview;
  };
  const Case cases[] = {{{4000, 3000}, {320, 240}},  {{1000, 100}, {876, 88}},
                        {{32, 24}, {320, 240}},      {{1, 1}, {277, 277}},
                        {{1, 1000000}, {0, 277128}}, {{2000000000, 2000000000}, {277, 277}}};
  for (const Case& each : cases) {
    Size size;
    ComputePreviewSize(each.image.width, each.image.height, size.width, size.height);
    EXPECT_EQ(size.width, each.preview.width);
    EXPECT_EQ(size.height, each.preview.height);
  }
}

TEST_F(PreviewImage, FollowsTheExtension) {
  const std::string input = Make({});
  const std::pair<const char*, const char*> formats[] = {
      {"x.jpg", "JPEG"}, {"x.tif", "GTiff"}, {"x.png", "PNG"}, {".jpg", "JPEG"}};
  for (const auto& [name, driver] : formats) {
    ASSERT_EQ(MakePreviewImage(input, m_folder.Path(name)), 1) << name;
    const GDALDatasetUniquePtr picture = Open(name);
    ASSERT_NE(picture, nullptr) << name;
    EXPECT_STREQ(picture->GetDriverName(), driver);
    EXPECT_EQ(picture->GetRasterXSize(), 310);
    EXPECT_EQ(picture->GetRasterYSize(), 248);
    EXPECT_EQ(picture->GetRasterCount(), 3);
  }
}

TEST_F(PreviewImage, IsKnownByItsNumberOfPixels) {
  const Size images[] = {{4000, 3000}, {1000, 100}, {100, 1000}, {1, 1}, {3, 2}, {1, 500}, {5000, 1}};
  for (const Size& size : images) {
    RasterRecipe recipe;
    recipe.width = size.width;
    recipe.height = size.height;
    ASSERT_EQ(MakePreviewImage(Make(recipe), m_folder.Path("x.jpg")), 1);
    EXPECT_TRUE(IsPreviewImage(m_folder.Path("x.jpg"))) << size.width << " x " << size.height;
    EXPECT_EQ(IsPreviewImage(m_folder.Path("in.tif")), false) << size.width << " x " << size.height;
  }
  WriteFile(m_folder.Path("text.jpg"), "no image");
  EXPECT_FALSE(IsPreviewImage(m_folder.Path("text.jpg")));
  EXPECT_FALSE(IsPreviewImage(m_folder.Path("none.jpg")));
}

TEST_F(PreviewImage, RefusesOtherExtensions) {
  const std::string input = Make({});
  for (const char* name : {"x.JPG", "x.Jpg", "x.jpeg", "x.gif", "x", "x.jpg."}) {
    EXPECT_EQ(MakePreviewImage(input, m_folder.Path(name)), 0) << name;
    EXPECT_FALSE(FileExists(m_folder.Path(name))) << name;
  }
}

TEST_F(PreviewImage, KeepsBandsInTheirOrder) {
  for (const int bands : {1, 2, 3, 4, 6}) {
    RasterRecipe recipe;
    recipe.bands = bands;
    const std::string input = Make(recipe);
    ASSERT_EQ(MakePreviewImage(input, m_folder.Path("x.tif")), 1) << bands;
    const GDALDatasetUniquePtr picture = Open("x.tif");
    ASSERT_EQ(picture->GetRasterCount(), bands);
    for (int band = 1; band <= bands; ++band) {
      GByte first = 0;
      ASSERT_EQ(
          picture->GetRasterBand(band)->RasterIO(GF_Read, 0, 0, 1, 1, &first, 1, 1, GDT_Byte, 0, 0, nullptr),
          CE_None);
      EXPECT_EQ(first, band);
    }
  }
}

TEST_F(PreviewImage, KeepsTheSampleType) {
  RasterRecipe recipe;
  recipe.type = GDT_UInt16;
  const std::string input = Make(recipe);
  ASSERT_EQ(MakePreviewImage(input, m_folder.Path("x.tif")), 1);
  EXPECT_EQ(Open("x.tif")->GetRasterBand(1)->GetRasterDataType(), GDT_UInt16);
}

TEST_F(PreviewImage, ShowsTheWholeInput) {
  RasterRecipe recipe;
  recipe.width = 320;
  recipe.height = 240;
  const std::string input = Make(recipe);
  ASSERT_EQ(MakePreviewImage(input, m_folder.Path("x.tif")), 1);
  const GDALDatasetUniquePtr picture = Open("x.tif");
  for (const int y : {0, 100, 239}) {
    for (const int x : {0, 150, 319}) {
      GByte value = 0;
      ASSERT_EQ(
          picture->GetRasterBand(1)->RasterIO(GF_Read, x, y, 1, 1, &value, 1, 1, GDT_Byte, 0, 0, nullptr),
          CE_None);
      EXPECT_EQ(value, (1 + x + y) % 256) << x << " " << y;
    }
  }
}

TEST_F(PreviewImage, ShowsTheGreyOfGreyWithTransparency) {
  RasterRecipe recipe;
  recipe.bands = 2;
  const std::string input = Make(recipe);
  ASSERT_EQ(MakePreviewImage(input, m_folder.Path("x.jpg")), 1);
  EXPECT_EQ(Open("x.jpg")->GetRasterCount(), 1);
}

TEST_F(PreviewImage, ShowsTheColoursOfTheTilesWhereValuesAreNoColours) {
  for (const GDALDataType type : {GDT_UInt16, GDT_Int16, GDT_Float32}) {
    RasterRecipe recipe;
    recipe.width = 128;
    recipe.height = 96;
    recipe.type = type;
    recipe.bands = 6;
    ASSERT_EQ(MakePreviewImage(Make(recipe), m_folder.Path("x.jpg")), 1) << type;
    const GDALDatasetUniquePtr picture = Open("x.jpg");
    EXPECT_EQ(picture->GetRasterCount(), 3);
    const auto value = [&picture](int x, int y) {
      GByte pixel = 0;
      EXPECT_EQ(
          picture->GetRasterBand(1)->RasterIO(GF_Read, x, y, 1, 1, &pixel, 1, 1, GDT_Byte, 0, 0, nullptr),
          CE_None);
      return int{pixel};
    };
    EXPECT_LT(value(0, 0), 10) << type;
    EXPECT_NEAR(value(160, 120), 127, 10) << type;
    EXPECT_GT(value(319, 239), 245) << type;
  }
}

TEST_F(PreviewImage, TellsWhyThereAreNoColours) {
  RasterRecipe recipe;
  recipe.type = GDT_UInt16;
  const std::string input = Make(recipe);
  std::filesystem::resize_file(input, std::filesystem::file_size(input) / 2);
  std::string reason;
  EXPECT_EQ(MakePreviewImage(input, m_folder.Path("x.jpg"), &reason), 0);
  EXPECT_NE(reason.find("the image could not be read"), std::string::npos) << reason;
  EXPECT_FALSE(FileExists(m_folder.Path("x.jpg")));
}

TEST_F(PreviewImage, NeverReplacesItsInput) {
  // A JPEG is a legal orthophoto, and so is a virtual raster that consists of one.
  ASSERT_EQ(MakePreviewImage(Make({}), m_folder.Path("own.jpg")), 1);
  const std::string photo = m_folder.Path("own.jpg");
  const std::string before = ReadFile(photo);
  EXPECT_EQ(MakePreviewImage(photo, photo), 0);
  EXPECT_STREQ(CPLGetLastErrorMsg(), "it would replace the orthophoto");
  EXPECT_EQ(MakePreviewImage(photo, m_folder.Path(".") + photo.substr(photo.size() - 8)), 0);

  WriteFile(m_folder.Path("own.vrt"),
            "<VRTDataset rasterXSize=\"310\" rasterYSize=\"248\"><VRTRasterBand dataType=\"Byte\" band=\"1\">"
            "<SimpleSource><SourceFilename relativeToVRT=\"1\">own.jpg</SourceFilename>"
            "<SourceBand>1</SourceBand></SimpleSource></VRTRasterBand></VRTDataset>");
  EXPECT_EQ(MakePreviewImage(m_folder.Path("own.vrt"), photo), 0);
  EXPECT_EQ(ReadFile(photo), before);
  EXPECT_EQ(MakePreviewImage(m_folder.Path("own.vrt"), m_folder.Path("other.jpg")), 1);
}

TEST_F(PreviewImage, MayHaveAnyNameThatTheSystemAllows) {
#ifdef _WIN32
  const size_t length = 255 - m_folder.Path("").size() - 1;
#else
  const size_t length = 255;
#endif
  const std::string name = std::string(length - 4, 'n') + ".jpg";
  EXPECT_EQ(MakePreviewImage(Make({}), m_folder.Path(name)), 1);
  EXPECT_NE(Open(name), nullptr);
}

TEST_F(PreviewImage, LeavesNothingBehindWhenTheFormatCannotHoldTheImage) {
  RasterRecipe recipe;
  recipe.bands = 5;
  std::string reason;
  EXPECT_EQ(MakePreviewImage(Make(recipe), m_folder.Path("x.png"), &reason), 0);
  EXPECT_NE(reason.find("5 bands"), std::string::npos) << reason;
  EXPECT_FALSE(FileExists(m_folder.Path("x.png")));
  recipe.bands = 3;
  recipe.type = GDT_Float32;
  EXPECT_EQ(MakePreviewImage(Make(recipe), m_folder.Path("x.png")), 0);
  EXPECT_FALSE(FileExists(m_folder.Path("x.png")));
}

TEST_F(PreviewImage, ReplacesAnOldPictureOnlyByACompleteOne) {
  WriteFile(m_folder.Path("x.png"), "old");
  RasterRecipe recipe;
  recipe.bands = 5;
  EXPECT_EQ(MakePreviewImage(Make(recipe), m_folder.Path("x.png")), 0);
  EXPECT_EQ(ReadFile(m_folder.Path("x.png")), "old");
  EXPECT_EQ(MakePreviewImage(Make({}), m_folder.Path("x.png")), 1);
  EXPECT_NE(Open("x.png"), nullptr);
  EXPECT_FALSE(FileExists(m_folder.Path("p.~mos")));
}

#ifndef _WIN32
TEST_F(PreviewImage, KeepsTheOldPictureWhenTheDiskIsFull) {
  // Everything that is written to this device is lost, which shows when it is closed at the latest.
  WriteFile(m_folder.Path("x.jpg"), "old");
  ASSERT_EQ(symlink("/dev/full", m_folder.Path("p.~mos").c_str()), 0);
  EXPECT_EQ(MakePreviewImage(Make({}), m_folder.Path("x.jpg")), 0);
  EXPECT_STREQ(CPLGetLastErrorMsg(), "the disk is full or broken");
  EXPECT_EQ(ReadFile(m_folder.Path("x.jpg")), "old");
  EXPECT_FALSE(FileExists(m_folder.Path("p.~mos")));
}
#endif

TEST_F(PreviewImage, FailsWithoutAUsableInput) {
  WriteFile(m_folder.Path("broken.tif"), "II*\0 not a picture");
  EXPECT_EQ(MakePreviewImage(m_folder.Path("broken.tif"), m_folder.Path("x.jpg")), 0);
  EXPECT_EQ(MakePreviewImage(m_folder.Path("none.tif"), m_folder.Path("x.jpg")), 0);
  CPLError(CE_Failure, CPLE_AppDefined, "of something else");
  std::string reason = "old";
  EXPECT_EQ(MakePreviewImage("", m_folder.Path("x.jpg"), &reason), 0);
  EXPECT_EQ(reason, "") << "GDAL has no word for it";
  EXPECT_EQ(MakePreviewImage(Make({}), ""), 0);
  EXPECT_EQ(MakePreviewImage(Make({}), m_folder.Path("no folder") + "/x.jpg"), 0);
  EXPECT_FALSE(FileExists(m_folder.Path("x.jpg")));
}

TEST_F(PreviewImage, FailsWhenASideVanishes) {
  RasterRecipe recipe;
  recipe.width = 1;
  recipe.height = 400000;
  recipe.bands = 1;
  EXPECT_EQ(MakePreviewImage(Make(recipe), m_folder.Path("x.jpg")), 0);
  EXPECT_FALSE(FileExists(m_folder.Path("x.jpg")));
}

TEST_F(PreviewImage, LeavesNoDatasetOpen) {
  const std::string input = Make({});
  int before = 0;
  GDALDataset::GetOpenDatasets(&before);
  MakePreviewImage(input, m_folder.Path("x.jpg"));
  MakePreviewImage(input, m_folder.Path("x.gif"));
  int after = 0;
  GDALDataset::GetOpenDatasets(&after);
  EXPECT_EQ(after, before);
}

}  // namespace
