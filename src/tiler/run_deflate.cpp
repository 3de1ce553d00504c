#include "tiler/run_deflate.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "tiler/huffman_code.h"

namespace tiler {

namespace {

constexpr std::size_t kBlockSize = 1 << 15;  // bytes that share a code
constexpr std::size_t kSymbols = 286;        // bytes, the end of a block, lengths
constexpr std::uint16_t kEndOfBlock = 256;
constexpr int kLongestCode = 15;
constexpr int kLongestLengthCode = 7;
constexpr std::size_t kShortestRun = 3;
constexpr std::size_t kLongestRun = 258;

// Of the symbols from 257 on: the shortest run that each one says, and the bits of what is added to it.
constexpr std::array<std::uint16_t, 29> kRunBases = {3,  4,  5,  6,   7,   8,   9,   10,  11, 13,
                                                     15, 17, 19, 23,  27,  31,  35,  43,  51, 59,
                                                     67, 83, 99, 115, 131, 163, 195, 227, 258};
constexpr std::array<std::uint8_t, 29> kRunBits = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                                   2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};

// By the length of a run.
constexpr std::array<std::uint8_t, kLongestRun + 1> RunSymbols() {
  std::array<std::uint8_t, kLongestRun + 1> symbols = {};
  for (std::size_t length = kShortestRun; length <= kLongestRun; ++length) {
    std::size_t symbol = kRunBases.size() - 1;
    while (kRunBases[symbol] > length) --symbol;
    symbols[length] = static_cast<std::uint8_t>(symbol);
  }
  return symbols;
}
constexpr auto kRunSymbols = RunSymbols();

// The order in which the lengths of the codes of code lengths are written.
constexpr std::array<std::uint8_t, 19> kLengthOrder = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                       11, 4,  12, 3, 13, 2, 14, 1, 15};

}  // namespace

// Bits from the lowest of a byte on.
class RunDeflater::BitWriter {
 public:
  explicit BitWriter(std::string& out) : m_out(out) {}

  // At most 32 bits.
  void Write(std::uint64_t bits, int count) {
    m_bits |= bits << m_count;
    m_count += count;
    if (m_count < 32) return;
    const auto low = static_cast<std::uint32_t>(m_bits);
    std::array<char, sizeof low> bytes;
    std::memcpy(bytes.data(), &low, sizeof low);
    m_out.append(bytes.data(), bytes.size());
    m_bits >>= 32;
    m_count -= 32;
  }
  // Up to a whole byte.
  void Finish() {
    for (; m_count > 0; m_count -= 8, m_bits >>= 8) m_out += static_cast<char>(m_bits & 0xFF);
    m_count = 0;
  }

 private:
  std::string& m_out;
  std::uint64_t m_bits = 0;
  int m_count = 0;
};

void RunDeflater::Compress(const std::vector<std::uint8_t>& bytes, std::string& out) {
  out += '\x78';  // deflate, 32 KiB
  out += '\x01';  // the quickest way
  BitWriter writer(out);
  std::size_t begin = 0;
  do {
    const std::size_t end = std::min(begin + kBlockSize, bytes.size());
    CompressBlock(bytes, begin, end, end == bytes.size(), writer);
    begin = end;
  } while (begin < bytes.size());
  writer.Finish();
  const std::uint32_t check = libdeflate_adler32(1, bytes.data(), bytes.size());
  for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(check >> shift & 0xFF);
}

void RunDeflater::Tokenize(const std::vector<std::uint8_t>& bytes, std::size_t begin, std::size_t end) {
  m_tokens.clear();
  m_counts.assign(kSymbols, 0);
  std::size_t i = begin;
  while (i < end) {
    std::size_t run = 0;
    if (i > 0 && bytes[i] == bytes[i - 1]) {
      const std::size_t most = std::min(kLongestRun, end - i);
      while (run < most && bytes[i + run] == bytes[i - 1]) ++run;
    }
    Token token = {bytes[i], 0, 0};
    if (run >= kShortestRun) {
      const std::size_t symbol = kRunSymbols[run];
      token = {static_cast<std::uint16_t>(kEndOfBlock + 1 + symbol), kRunBits[symbol],
               static_cast<std::uint8_t>(run - kRunBases[symbol])};
    }
    i += run >= kShortestRun ? run : 1;
    ++m_counts[token.symbol];
    m_tokens.push_back(token);
  }
  m_tokens.push_back({kEndOfBlock, 0, 0});
  ++m_counts[kEndOfBlock];
}

void RunDeflater::CompressBlock(const std::vector<std::uint8_t>& bytes, std::size_t begin, std::size_t end,
                                bool isLast, BitWriter& writer) {
  Tokenize(bytes, begin, end);
  const std::vector<std::uint8_t> lengths = CodeLengths(m_counts, kLongestCode);
  const std::vector<std::uint16_t> codes = CodesOf(lengths);

  // The lengths of all codes one by one, and behind them that of the one distance there is.
  std::vector<std::uint8_t> told = lengths;
  told.push_back(1);
  std::vector<std::uint32_t> counts(kLengthOrder.size());
  for (const std::uint8_t length : told) ++counts[length];
  const std::vector<std::uint8_t> lengthLengths = CodeLengths(counts, kLongestLengthCode);
  const std::vector<std::uint16_t> lengthCodes = CodesOf(lengthLengths);
  writer.Write(isLast ? 1 : 0, 1);
  writer.Write(2, 2);                        // codes of its own
  writer.Write(kSymbols - 257, 5);           // literals and lengths
  writer.Write(0, 5);                        // one distance
  writer.Write(kLengthOrder.size() - 4, 4);  // lengths of code lengths
  for (const std::uint8_t length : kLengthOrder) writer.Write(lengthLengths[length], 3);
  for (const std::uint8_t length : told) writer.Write(lengthCodes[length], lengthLengths[length]);

  for (const Token& token : m_tokens) {
    writer.Write(codes[token.symbol], lengths[token.symbol]);
    // The distance 1 is a bit of 0.
    if (token.symbol > kEndOfBlock) writer.Write(token.extra, token.extraBits + 1);
  }
}

}  // namespace tiler
