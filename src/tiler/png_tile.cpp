#include "tiler/png_tile.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>
#include <string_view>

#include "tiler/png_filter.h"

namespace tiler {

namespace {

using namespace std::string_view_literals;

// Filtered photographs hold hardly any repetition: a higher level takes four times as long for three per
// cent.
constexpr int kLevel = 1;
constexpr std::size_t kRows = kTileSize;
constexpr std::string_view kSignature = "\x89PNG\r\n\x1a\n"sv;

void AppendNumber(std::string& text, std::uint32_t number) {
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(number >> shift & 0xFF);
}

// The name and what follows it are checked.
void AppendChunk(std::string& file, std::string_view name, std::string_view content) {
  AppendNumber(file, static_cast<std::uint32_t>(content.size()));
  const std::size_t begin = file.size();
  file += name;
  file += content;
  AppendNumber(file, libdeflate_crc32(0, file.data() + begin, file.size() - begin));
}

std::string Header(int channels) {
  constexpr std::array<char, 5> kColourTypes = {0, 0, 4, 2,
                                                6};  // by channels: -, grey, grey+alpha, RGB, RGBA
  std::string header;
  AppendNumber(header, kTileSize);
  AppendNumber(header, kTileSize);
  header += '\x08';  // bits
  header += kColourTypes[static_cast<std::size_t>(channels)];
  header.append(3, '\0');  // the only compression and filter method, no interlace
  return header;
}

}  // namespace

void PngEncoder::Deleter::operator()(libdeflate_compressor* compressor) const {
  libdeflate_free_compressor(compressor);
}

PngEncoder::PngEncoder(int colours) : m_colours(colours), m_compressor(libdeflate_alloc_compressor(kLevel)) {
  if (!m_compressor) throw std::bad_alloc();
}

PngEncoder::~PngEncoder() = default;

std::string_view PngEncoder::Encode(const Tile& tile) {
  const int channels = m_colours + (IsOpaque(tile) ? 0 : 1);
  TakeSamples(tile, channels);
  Filter(channels);
  Compress();

  m_file.assign(kSignature);
  AppendChunk(m_file, "IHDR", Header(channels));
  AppendChunk(m_file, "IDAT", m_stream);
  AppendChunk(m_file, "IEND", "");
  return m_file;
}

void PngEncoder::TakeSamples(const Tile& tile, int channels) {
  m_samples.resize(kTilePixels * static_cast<std::size_t>(channels));
  std::uint8_t* sample = m_samples.data();
  for (const Pixel& pixel : tile) {
    *sample++ = pixel.red;
    if (m_colours == 3) {
      *sample++ = pixel.green;
      *sample++ = pixel.blue;
    }
    if (channels > m_colours) *sample++ = pixel.alpha;
  }
}

void PngEncoder::Filter(int channels) {
  const std::size_t rowSize = static_cast<std::size_t>(channels) * kTileSize;
  const std::vector<std::uint8_t> nothing(rowSize);
  m_filtered.resize(kRows * (rowSize + 1));
  for (std::size_t y = 0; y < kRows; ++y) {
    const std::uint8_t* row = &m_samples[y * rowSize];
    const std::uint8_t* above = y == 0 ? nothing.data() : row - rowSize;
    FilterRow(row, above, rowSize, static_cast<std::size_t>(channels), &m_filtered[y * (rowSize + 1)]);
  }
}

void PngEncoder::Compress() {
  m_stream.clear();
  m_runs.Compress(m_filtered, m_stream);
  // What this makes very small is a drawing, or empty for the most part: looking for what repeats makes it
  // smaller still. Of photographs it leaves more, and nothing else would make that much smaller.
  if (m_stream.size() > m_filtered.size() / 6) return;
  m_other.resize(libdeflate_zlib_compress_bound(m_compressor.get(), m_filtered.size()));
  m_other.resize(libdeflate_zlib_compress(m_compressor.get(), m_filtered.data(), m_filtered.size(),
                                          m_other.data(), m_other.size()));
  if (m_other.size() < m_stream.size()) m_stream.swap(m_other);
}

}  // namespace tiler
