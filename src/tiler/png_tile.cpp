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

bool IsOpaque(const Tile& tile) {
  std::uint8_t all = 255;
  for (const Pixel& pixel : tile) all &= pixel.alpha;
  return all == 255;
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
  m_samples.clear();
  m_samples.reserve(kTilePixels * sizeof(Pixel));
  for (const Pixel& pixel : tile) {
    const std::array<std::uint8_t, 4> all = {pixel.red, pixel.green, pixel.blue, pixel.alpha};
    m_samples.insert(m_samples.end(), all.begin(), all.begin() + m_colours);
    if (channels > m_colours) m_samples.push_back(pixel.alpha);
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
  // Of a photograph, runs and single bytes leave the half or more, and nothing else makes it much smaller. Of
  // drawings and what is empty they leave little, and looking for what repeats leaves less.
  if (m_stream.size() > m_filtered.size() * 2 / 5) return;
  m_other.resize(libdeflate_zlib_compress_bound(m_compressor.get(), m_filtered.size()));
  m_other.resize(libdeflate_zlib_compress(m_compressor.get(), m_filtered.data(), m_filtered.size(),
                                          m_other.data(), m_other.size()));
  if (m_other.size() < m_stream.size()) m_stream.swap(m_other);
}

}  // namespace tiler
