#include "tiler/image_files.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "support/temporary_folder.h"

namespace tiler {
namespace {

constexpr int kWidth = 300;
constexpr int kBands = 3;

class ImageFiles : public testing::Test {
 protected:
  void SetUp() override { GDALAllRegister(); }

  GDALDatasetUniquePtr Make(const std::string& name, const char* option) const {
    CPLStringList options;
    options.AddString(option).AddString("PHOTOMETRIC=RGB");
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    return GDALDatasetUniquePtr(
        driver->Create(m_folder.Path(name).c_str(), kWidth, 200, kBands, GDT_Byte, options));
  }
  GDALDatasetUniquePtr MakeVirtual(const std::string& name, GDALDataset& of) const {
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("VRT");
    return GDALDatasetUniquePtr(
        driver->CreateCopy(m_folder.Path(name).c_str(), &of, FALSE, nullptr, nullptr, nullptr));
  }
  GDALDatasetUniquePtr Open(const std::string& name) const {
    return GDALDatasetUniquePtr(GDALDataset::Open(m_folder.Path(name).c_str()));
  }
  std::string State(const std::string& name) const { return StateOf(*Open(name)); }

  TemporaryFolder m_folder;
};

TEST_F(ImageFiles, TellHowAnImageLies) {
  const SourceLayout striped = LayoutOf(*Make("strips.tif", "BLOCKYSIZE=7"));
  EXPECT_TRUE(striped.IsStriped());
  EXPECT_EQ(striped.blockHeight, 7);
  EXPECT_EQ(striped.rowBytes, kWidth * kBands);
  EXPECT_FALSE(LayoutOf(*Make("blocks.tif", "TILED=YES")).IsStriped());
}

TEST_F(ImageFiles, TellHowThoseOfAVirtualImageLie) {
  Make("strips.tif", "BLOCKYSIZE=7");
  MakeVirtual("one.vrt", *Open("strips.tif"));
  MakeVirtual("two.vrt", *Open("one.vrt"));
  for (const char* name : {"one.vrt", "two.vrt"}) {
    const auto image = Open(name);
    EXPECT_TRUE(IsVirtual(*image));
    EXPECT_EQ(LayoutOf(*image).blockHeight, 7) << name;
  }
  EXPECT_FALSE(IsVirtual(*Open("strips.tif")));
}

TEST_F(ImageFiles, HaveTheStateOfWhatTheyHold) {
  Make("strips.tif", "BLOCKYSIZE=7");
  MakeVirtual("one.vrt", *Open("strips.tif"));
  const std::string before = State("one.vrt");
  MakeVirtual("one.vrt", *Open("strips.tif"));
  EXPECT_EQ(State("one.vrt"), before) << "written again as it was";
  Make("strips.tif", "BLOCKYSIZE=9");
  EXPECT_NE(State("one.vrt"), before) << "the file that it is made of";
}

TEST_F(ImageFiles, HaveTheStateOfWhatLiesBehindThem) {
  Make("strips.tif", "BLOCKYSIZE=7");
  MakeVirtual("one.vrt", *Open("strips.tif"));
  MakeVirtual("two.vrt", *Open("one.vrt"));
  const std::string before = State("two.vrt");
  EXPECT_EQ(State("two.vrt"), before);
  EXPECT_NE(before.find("strips.tif"), std::string::npos);
  Make("strips.tif", "BLOCKYSIZE=9");
  EXPECT_NE(State("two.vrt"), before);
}

TEST_F(ImageFiles, AreStripedTogetherWhenTheyAreSideBySide) {
  Make("strips.tif", "BLOCKYSIZE=7");
  const auto image = Open("strips.tif");
  GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("VRT");
  const GDALDatasetUniquePtr wide(
      driver->Create(m_folder.Path("wide.vrt").c_str(), 2 * kWidth, 200, 1, GDT_Byte, nullptr));
  const std::string source = "<SimpleSource><SourceFilename>" + m_folder.Path("strips.tif") +
                             "</SourceFilename><SourceBand>1</SourceBand></SimpleSource>";
  wide->GetRasterBand(1)->SetMetadataItem("source_0", source.c_str(), "new_vrt_sources");
  wide->FlushCache();
  const SourceLayout layout = LayoutOf(*wide);
  EXPECT_TRUE(layout.IsStriped());
  EXPECT_EQ(layout.rowBytes, 2 * kWidth);
}

TEST_F(ImageFiles, HaveTheStateOfTheirTimeWhenTheyAreLarge) {
  GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
  const std::string path = m_folder.Path("large.tif");
  {
    const GDALDatasetUniquePtr large(driver->Create(path.c_str(), 2000, 2000, 1, GDT_Byte, nullptr));
    large->GetRasterBand(1)->Fill(9);
  }
  const std::string before = State("large.tif");
  EXPECT_LT(before.size(), 1000U);
  EXPECT_EQ(State("large.tif"), before);
  std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) + std::chrono::seconds(1));
  EXPECT_NE(State("large.tif"), before);
}

}  // namespace
}  // namespace tiler
