#include "tiler/run_deflate.h"

#include <gtest/gtest.h>
#include <libdeflate.h>

#include <memory>
#include <random>
#include <utility>

namespace tiler {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::string Compressed(const Bytes& bytes) {
  std::string out = "before";
  RunDeflater().Compress(bytes, out);
  EXPECT_TRUE(out.starts_with("before"));
  return out.substr(6);
}

void ExpectRestored(const Bytes& bytes) {
  const std::string stream = Compressed(bytes);
  const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> reader(
      libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
  Bytes restored(bytes.size());
  EXPECT_EQ(libdeflate_zlib_decompress(reader.get(), stream.data(), stream.size(), restored.data(),
                                       restored.size(), nullptr),
            LIBDEFLATE_SUCCESS)
      << bytes.size();
  EXPECT_EQ(restored, bytes);
}

TEST(RunDeflater, LosesNothingOfNoise) {
  std::mt19937 random(1);
  for (const unsigned values : {1U, 2U, 3U, 20U, 256U}) {
    for (const std::size_t size : {1, 2, 3, 4, 1000, 32767, 32768, 32769, 200000}) {
      Bytes bytes(size);
      for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() % values);
      ExpectRestored(bytes);
    }
  }
}

TEST(RunDeflater, LosesNothingOfRuns) {
  for (std::size_t length = 1; length < 600; ++length) {
    Bytes bytes = {7};
    bytes.insert(bytes.end(), length, 9);
    bytes.insert(bytes.end(), length, 0);
    ExpectRestored(bytes);
  }
  ExpectRestored(Bytes(1000000, 0));
  // Across the border of two blocks, and up to it.
  for (const std::size_t before : {32766, 32767, 32768}) {
    Bytes bytes(before, 1);
    bytes.insert(bytes.end(), 5, 2);
    ExpectRestored(bytes);
  }
}

TEST(RunDeflater, LosesNothingWhenCodesAreLong) {
  // Numbers of Fibonacci make the deepest trees.
  Bytes bytes;
  std::size_t count = 1;
  std::size_t before = 1;
  for (std::uint8_t value = 0; value < 20; ++value) {
    for (std::size_t i = 0; i < count; ++i)
      bytes.push_back(static_cast<std::uint8_t>(i % 2 == 0 ? value : 200));
    count = std::exchange(before, before + count);
  }
  ExpectRestored(bytes);
}

TEST(RunDeflater, TakesOneByteForOne) {
  Bytes bytes(30000);
  std::mt19937 random(2);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() % 16);
  EXPECT_LT(Compressed(bytes).size(), bytes.size() / 2 + 400) << "four bits of each";
  EXPECT_LT(Compressed(Bytes(30000, 5)).size(), 400U);
}

}  // namespace
}  // namespace tiler
