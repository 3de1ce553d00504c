#include "tiler/value_range.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <numeric>
#include <vector>

#include "tiler/gdal_errors.h"
#include "tiler/run_log.h"

namespace tiler {
namespace {

void ExpectRange(const ValueRange& range, double black, double white) {
  EXPECT_EQ(range.black, black);
  EXPECT_EQ(range.white, white);
}

TEST(RangeOf, LeavesTwoPerCentOnEachSide) {
  std::vector<double> values(101);
  std::iota(values.begin(), values.end(), -50);
  ExpectRange(RangeOf(values), -48, 48);
  values.front() = -1e300;
  values.back() = 1e300;
  ExpectRange(RangeOf(values), -48, 48);
}

TEST(RangeOf, DoesNotDependOnTheOrder) {
  ExpectRange(RangeOf({3, 1, 2}), 1, 3);
  ExpectRange(RangeOf({2, 3, 1}), 1, 3);
}

TEST(RangeOf, IsNeverEmpty) {
  ExpectRange(RangeOf({}), 0, 1);
  ExpectRange(RangeOf({7}), 6, 8);
  ExpectRange(RangeOf({-2, -2, -2}), -3, -1);
  // One more is still the same number.
  const ValueRange range = RangeOf({1e300, 1e300});
  EXPECT_LT(range.black, range.white);
}

// A pixel's value is its row.
GDALDatasetUniquePtr RowNumbers(int width, int height) {
  GDALDriver* memory = GetGDALDriverManager()->GetDriverByName("MEM");
  GDALDatasetUniquePtr image(memory->Create("", width, height, 1, GDT_Float64, nullptr));
  for (int y = 0; y < height; ++y) {
    std::vector<double> row(static_cast<std::size_t>(width), y);
    EXPECT_EQ(image->GetRasterBand(1)->RasterIO(GF_Write, 0, y, width, 1, row.data(), width, 1, GDT_Float64,
                                                0, 0, nullptr),
              CE_None);
  }
  return image;
}

class ShownRangeOfAnImage : public testing::Test {
 protected:
  ShownRangeOfAnImage() : m_log(std::filesystem::path()), m_errors(m_log) { GDALAllRegister(); }

  RunLog m_log;
  GdalErrors m_errors;
};

TEST_F(ShownRangeOfAnImage, IsThatOfAllPixelsWhereTheyAreFew) {
  ExpectRange(ShownRangeOf(*RowNumbers(3, 101), 1, m_errors), 2, 98);
}

TEST_F(ShownRangeOfAnImage, IsThatOfAPatternWhereTheyAreMany) {
  constexpr int kHeight = 70000;
  constexpr int kWidth = 64;
  std::vector<double> values;
  for (int i = 0; i < 16; ++i) {
    const int first = (kHeight - 128) * i / 15;
    for (int y = first; y < first + 128; ++y) values.push_back(y);
  }
  const ValueRange expected = RangeOf(values);
  // Each of them is there as often as any other.
  const ValueRange range = ShownRangeOf(*RowNumbers(kWidth, kHeight), 1, m_errors);
  EXPECT_NEAR(range.black, expected.black, 1);
  EXPECT_NEAR(range.white, expected.white, 1);
}

TEST_F(ShownRangeOfAnImage, LeavesOutWhatIsHiddenOrNoNumber) {
  const GDALDatasetUniquePtr image = RowNumbers(3, 101);
  std::vector<double> row(3, std::numeric_limits<double>::infinity());
  EXPECT_EQ(
      image->GetRasterBand(1)->RasterIO(GF_Write, 0, 0, 3, 1, row.data(), 3, 1, GDT_Float64, 0, 0, nullptr),
      CE_None);
  image->GetRasterBand(1)->SetNoDataValue(100);
  ExpectRange(ShownRangeOf(*image, 1, m_errors), 3, 97);
}

}  // namespace
}  // namespace tiler
