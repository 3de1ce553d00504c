// Both readers give the same pixels.
#include "tiler/window_reader.h"

#include <cpl_string.h>
#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <cstdlib>
#include <random>

#include "support/temporary_folder.h"
#include "tiler/request.h"
#include "tiler/run_log.h"
#include "tiler/source_image.h"

namespace tiler {
namespace {

constexpr int kWidth = 300;
constexpr int kHeight = 200;

class WindowReaders : public testing::Test {
 protected:
  void SetUp() override {
    GDALAllRegister();
    setenv("MOSAICON_TILER_LOG", m_folder.Path("log").c_str(), 1);
  }
  void TearDown() override { unsetenv("MOSAICON_TILER_LOG"); }

  // In a national zone, so that it is reprojected. The last of two or four bands is transparency: nothing,
  // half and all of it, with strong colours everywhere.
  void Make(int bands, const char* option) const {
    CPLStringList options;
    options.AddString(option).AddString(bands % 2 == 0 ? "ALPHA=YES" : "ALPHA=NO");
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    const GDALDatasetUniquePtr image(
        driver->Create(m_folder.Path("a.tif").c_str(), kWidth, kHeight, bands, GDT_Byte, options.List()));
    OGRSpatialReference srs;
    srs.importFromEPSG(32632);
    double place[] = {500000, 0.7, 0, 5200000, 0, -0.7};
    image->SetSpatialRef(&srs);
    image->SetGeoTransform(place);
    std::mt19937 random(static_cast<unsigned>(bands));
    for (GDALRasterBand* band : image->GetBands()) {
      const bool isAlpha = bands % 2 == 0 && band->GetBand() == bands;
      std::vector<GByte> pixels(std::size_t{kWidth} * kHeight);
      for (GByte& pixel : pixels)
        pixel = static_cast<GByte>(isAlpha ? random() % 3 * 127 : 100 + random() % 150);
      EXPECT_EQ(band->RasterIO(GF_Write, 0, 0, kWidth, kHeight, pixels.data(), kWidth, kHeight, GDT_Byte, 0,
                               0, nullptr),
                CE_None);
    }
  }

  // Without a transparent colour when there is none to be.
  Request RequestFor(bool hasTransparent) const {
    Request request;
    request.input = m_folder.Path("a.tif");
    if (hasTransparent) request.transparent = Colour{120, 130, 140};
    return request;
  }

  TemporaryFolder m_folder;
};

TEST_F(WindowReaders, GiveTheSamePixels) {
  for (const int bands : {1, 2, 3, 4}) {
    for (const char* option : {"TILED=YES", "BLOCKYSIZE=7"}) {
      for (const bool hasTransparent : {false, true}) {
        Make(bands, option);
        RunLog log;
        const SourceImage source(RequestFor(hasTransparent), log);
        const MapView view = MakeMapView(source, log);
        ASSERT_TRUE(view.direct) << bands;
        EXPECT_EQ(static_cast<bool>(view.direct->pixels.shared), option[0] == 'B');
        const PixelWindow all = {0, 0, view.image.width, view.image.height};
        std::vector<Pixel> direct;
        std::vector<Pixel> byVirtual;
        MakeDirectReader(view, log)->Read(all, direct);
        MakeVirtualReader(view, log)->Read(all, byVirtual);
        EXPECT_TRUE(direct == byVirtual)
            << bands << " bands, " << option << (hasTransparent ? ", a colour" : "");
      }
    }
  }
}

}  // namespace
}  // namespace tiler
