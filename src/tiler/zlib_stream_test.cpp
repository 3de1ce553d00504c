#include "tiler/zlib_stream.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <chrono>
#include <cmath>
#include <random>

namespace tiler {
namespace {

using Bytes = std::vector<std::uint8_t>;

// As zlib reads it.
Bytes Decompressed(const std::string& stream, std::size_t size) {
  Bytes bytes(size + 1);
  uLongf length = bytes.size();
  const int result =
      uncompress(bytes.data(), &length, reinterpret_cast<const Bytef*>(stream.data()), stream.size());
  EXPECT_EQ(result, Z_OK);
  bytes.resize(length);
  return bytes;
}

// values: how many different ones there are.
Bytes Random(std::size_t size, unsigned values, unsigned seed) {
  std::mt19937 random(seed);
  Bytes bytes(size);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() % values);
  return bytes;
}

TEST(ZlibCompressor, LosesNothing) {
  ZlibCompressor compressor;
  std::string stream;
  for (const std::size_t size : {0, 1, 2, 257, 65535, 65536, 262400}) {
    for (const unsigned values : {1, 2, 17, 256}) {
      const Bytes bytes = Random(size, values, 1);
      compressor.Compress(bytes, stream);
      EXPECT_EQ(Decompressed(stream, size), bytes) << size << " bytes, " << values << " values";
      EXPECT_LE(stream.size(), size + size / 100 + 64);
    }
  }
}

TEST(ZlibCompressor, MakesSmallWhatIsSimple) {
  ZlibCompressor compressor;
  std::string stream;
  compressor.Compress(Bytes(262400, 7), stream);
  EXPECT_LT(stream.size(), 2000U);
  compressor.Compress(Random(262400, 4, 2), stream);
  EXPECT_LT(stream.size(), 262400U * 2 / 5);
}

TEST(ZlibCompressor, RemembersNothingOfTheStreamBefore) {
  const Bytes bytes = Random(100000, 30, 3);
  ZlibCompressor used;
  std::string stream;
  used.Compress(Random(262400, 200, 4), stream);
  used.Compress(bytes, stream);
  std::string fresh;
  ZlibCompressor().Compress(bytes, fresh);
  EXPECT_EQ(stream, fresh);
}

TEST(Crc32, IsThatOfZlib) {
  const Bytes bytes = Random(70000, 256, 5);
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  for (const std::size_t size : {0U, 1U, 15U, 255U, 4097U, 70000U}) {
    EXPECT_EQ(Crc32(0, text.substr(0, size)), crc32(0, bytes.data(), static_cast<uInt>(size)));
    EXPECT_EQ(Crc32(Crc32(0, text.substr(0, size)), text.substr(size)), crc32(0, bytes.data(), 70000));
  }
}

// Seconds for some thousand calls of the mathematical library, the least of several tries.
double TimeOfMathematics() {
  double best = 1e9;
  for (int i = 0; i < 9; ++i) {
    const auto start = std::chrono::steady_clock::now();
    volatile double sum = 0;
    for (int k = 0; k < 20000; ++k) sum = sum + std::asinh(std::tan(k * 1e-4));
    best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  return best;
}

TEST(ZlibStream, SlowsDownNothingThatFollows) {
  const double before = TimeOfMathematics();
  const Bytes bytes = Random(262400, 60, 6);
  std::string stream;
  ZlibCompressor().Compress(bytes, stream);
  const double afterCompressing = TimeOfMathematics();
  Crc32(0, stream);
  const double afterChecking = TimeOfMathematics();
  EXPECT_LT(afterCompressing, 2 * before);
  EXPECT_LT(afterChecking, 2 * before);
}

}  // namespace
}  // namespace tiler
