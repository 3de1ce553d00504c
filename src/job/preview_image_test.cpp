#include "job/preview_image.h"

#include <gtest/gtest.h>

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

TEST_F(PreviewImage, RefusesOtherExtensions) {
  const std::string input = Make({});
  for (const char* name : {"x.JPG", "x.Jpg", "x.jpeg", "x.gif", "x", "x.jpg.", "x.longextension"}) {
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

TEST_F(PreviewImage, LeavesNothingBehindWhenTheFormatCannotHoldTheImage) {
  RasterRecipe recipe;
  recipe.bands = 2;
  EXPECT_EQ(MakePreviewImage(Make(recipe), m_folder.Path("x.jpg")), 0);
  EXPECT_FALSE(FileExists(m_folder.Path("x.jpg")));
  recipe.bands = 3;
  recipe.type = GDT_Float32;
  EXPECT_EQ(MakePreviewImage(Make(recipe), m_folder.Path("x.png")), 0);
  EXPECT_FALSE(FileExists(m_folder.Path("x.png")));
}

TEST_F(PreviewImage, ReplacesAnOldPictureOnlyByACompleteOne) {
  WriteFile(m_folder.Path("x.jpg"), "old");
  RasterRecipe recipe;
  recipe.bands = 2;
  EXPECT_EQ(MakePreviewImage(Make(recipe), m_folder.Path("x.jpg")), 0);
  EXPECT_EQ(ReadFile(m_folder.Path("x.jpg")), "old");
  EXPECT_EQ(MakePreviewImage(Make({}), m_folder.Path("x.jpg")), 1);
  EXPECT_NE(Open("x.jpg"), nullptr);
  EXPECT_FALSE(FileExists(m_folder.Path("x.jpg.part")));
}

TEST_F(PreviewImage, FailsWithoutAUsableInput) {
  WriteFile(m_folder.Path("broken.tif"), "II*\0 not a picture");
  EXPECT_EQ(MakePreviewImage(m_folder.Path("broken.tif"), m_folder.Path("x.jpg")), 0);
  EXPECT_EQ(MakePreviewImage(m_folder.Path("none.tif"), m_folder.Path("x.jpg")), 0);
  EXPECT_EQ(MakePreviewImage("", m_folder.Path("x.jpg")), 0);
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
