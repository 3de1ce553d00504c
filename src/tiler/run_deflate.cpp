#include "tiler/run_deflate.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "tiler/huffman_code.h"

namespace tiler {

namespace {

constexpr std::size_t kBlockSize = 1 << 15;  // bytes that share a code
constexpr std::size_t kSymbols = 286;        // bytes, the end of a block, lengths
constexpr std::size_t kLengthSymbols = 19;
constexpr std::size_t kEndOfBlock = 256;
constexpr int kLongestCode = 12;  // of the 15 that are allowed: four fit behind one another into a register
constexpr int kLongestLengthCode = 7;
constexpr std::size_t kShortestRun = 3;
constexpr std::size_t kLongestRun = 258;
constexpr std::size_t kWord = sizeof(std::uint64_t);
static_assert(std::endian::native == std::endian::little);

// What a block may come to: its code, and all of its bytes with the longest one.
constexpr std::size_t kLargestBlock =
    (17 + kLengthSymbols * 3 + (kSymbols + 1) * kLongestLengthCode + (kBlockSize + 1) * kLongestCode) / 8 + 1;

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
constexpr std::array<std::uint8_t, kLengthSymbols> kLengthOrder = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                                   11, 4,  12, 3, 13, 2, 14, 1, 15};

std::uint64_t WordAt(const std::uint8_t* place) {
  std::uint64_t word = 0;
  std::memcpy(&word, place, kWord);
  return word;
}

// The highest bit of each byte that is 0.
std::uint64_t ZeroBytes(std::uint64_t word) {
  constexpr std::uint64_t kLow = 0x7F7F7F7F7F7F7F7F;
  return ~(((word & kLow) + kLow) | word | kLow);
}

// How many bytes from here on surely do not begin a run, at most eight. Eight of them can be read, and the
// one before.
std::size_t BytesWithoutRun(const std::uint8_t* place) {
  const std::uint64_t same = ZeroBytes(WordAt(place) ^ WordAt(place - 1));
  if (same == 0) return kWord;
  const std::uint64_t begins = same & same >> 8 & same >> 16;
  // A run that begins with the last two shows only in the next word.
  const std::size_t seen = kWord - (kShortestRun - 1);
  return begins == 0 ? seen : std::min(seen, static_cast<std::size_t>(std::countr_zero(begins)) / 8);
}

// How often each byte occurs.
class ByteCounts {
 public:
  void Add(const std::uint8_t* bytes, std::size_t count) {
    // In four tables by turns: to count the same byte twice is to wait for the first time.
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
      for (std::size_t k = 0; k < m_tables.size(); ++k) ++m_tables[k][bytes[i + k]];
    }
    for (; i < count; ++i) ++m_tables[0][bytes[i]];
  }
  void AddTo(std::vector<std::uint32_t>& counts) const {
    for (const auto& table : m_tables) {
      for (std::size_t i = 0; i < table.size(); ++i) counts[i] += table[i];
    }
  }

 private:
  std::array<std::array<std::uint32_t, 256>, 4> m_tables = {};
};

}  // namespace

// Bits from the lowest of a byte on, into memory that has seven bytes to spare.
class RunDeflater::BitWriter {
 public:
  explicit BitWriter(std::uint8_t* to) : m_to(to) {}

  // At most 56 bits from one Flush() to the next.
  void Add(std::uint64_t bits, unsigned count) {
    m_bits |= bits << m_count;
    m_count += count;
  }
  void Flush() {
    std::memcpy(m_to, &m_bits, kWord);
    m_to += m_count / 8;
    m_bits >>= m_count & ~7U;
    m_count &= 7;
  }
  void Write(std::uint64_t bits, unsigned count) {
    Add(bits, count);
    Flush();
  }
  // Up to a whole byte. Returns the place behind it.
  std::uint8_t* Finish() {
    Flush();
    return m_count > 0 ? m_to + 1 : m_to;
  }

 private:
  std::uint8_t* m_to;
  std::uint64_t m_bits = 0;
  unsigned m_count = 0;
};

void RunDeflater::Compress(const std::vector<std::uint8_t>& bytes, std::string& out) {
  const std::size_t blocks = std::max<std::size_t>(1, (bytes.size() + kBlockSize - 1) / kBlockSize);
  m_out.resize(blocks * kLargestBlock + kWord);
  BitWriter writer(m_out.data());
  for (std::size_t i = 0; i < blocks; ++i) {
    const std::size_t begin = i * kBlockSize;
    CompressBlock(bytes, begin, std::min(begin + kBlockSize, bytes.size()), i + 1 == blocks, writer);
  }
  const std::uint8_t* end = writer.Finish();
  out += '\x78';  // deflate, 32 KiB
  out += '\x01';  // the quickest way
  out.append(reinterpret_cast<const char*>(m_out.data()), static_cast<std::size_t>(end - m_out.data()));
  const std::uint32_t check = libdeflate_adler32(1, bytes.data(), bytes.size());
  for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(check >> shift & 0xFF);
}

void RunDeflater::FindRuns(const std::uint8_t* all, std::size_t begin, std::size_t end) {
  m_runs.clear();
  m_counts.assign(kSymbols, 0);
  ByteCounts bytes;
  std::size_t i = begin;
  while (i < end) {
    const bool canLookAhead = i > 0 && i + kWord <= end;
    std::size_t single = canLookAhead ? BytesWithoutRun(all + i) : 0;
    if (single == 0) {
      const std::size_t most = i > 0 ? std::min(kLongestRun, end - i) : 0;
      std::size_t run = 0;
      while (run < most && all[i + run] == all[i - 1]) ++run;
      if (run >= kShortestRun) {
        m_runs.push_back({i, run});
        ++m_counts[kEndOfBlock + 1 + kRunSymbols[run]];
        i += run;
        continue;
      }
      single = 1;
    }
    bytes.Add(all + i, single);
    i += single;
  }
  bytes.AddTo(m_counts);
  ++m_counts[kEndOfBlock];
}

void RunDeflater::CompressBlock(const std::vector<std::uint8_t>& bytes, std::size_t begin, std::size_t end,
                                bool isLast, BitWriter& writer) {
  FindRuns(bytes.data(), begin, end);
  const std::vector<std::uint8_t> lengths = CodeLengths(m_counts, kLongestCode);
  const std::vector<std::uint16_t> codes = CodesOf(lengths);
  for (std::size_t i = 0; i < m_byteCodes.size(); ++i) m_byteCodes[i] = {codes[i], lengths[i]};
  writer.Write(isLast ? 1 : 0, 1);
  WriteCode(lengths, writer);
  std::size_t place = begin;
  for (const Run& run : m_runs) {
    WriteBytes(&bytes[place], run.begin - place, writer);
    const std::size_t symbol = kRunSymbols[run.length];
    writer.Add(codes[kEndOfBlock + 1 + symbol], lengths[kEndOfBlock + 1 + symbol]);
    // The distance 1 is a bit of 0.
    writer.Write(run.length - kRunBases[symbol], kRunBits[symbol] + 1U);
    place = run.begin + run.length;
  }
  WriteBytes(bytes.data() + place, end - place, writer);
  writer.Write(codes[kEndOfBlock], lengths[kEndOfBlock]);
}

// The lengths of all codes one by one, and behind them that of the one distance there is.
void RunDeflater::WriteCode(const std::vector<std::uint8_t>& lengths, BitWriter& writer) {
  std::vector<std::uint8_t> told = lengths;
  told.push_back(1);
  std::vector<std::uint32_t> counts(kLengthSymbols);
  for (const std::uint8_t length : told) ++counts[length];
  const std::vector<std::uint8_t> lengthLengths = CodeLengths(counts, kLongestLengthCode);
  const std::vector<std::uint16_t> lengthCodes = CodesOf(lengthLengths);
  writer.Write(2, 2);                   // codes of its own
  writer.Write(kSymbols - 257, 5);      // literals and lengths
  writer.Write(0, 5);                   // one distance
  writer.Write(kLengthSymbols - 4, 4);  // lengths of code lengths
  for (const std::uint8_t length : kLengthOrder) writer.Write(lengthLengths[length], 3);
  for (const std::uint8_t length : told) writer.Write(lengthCodes[length], lengthLengths[length]);
}

void RunDeflater::WriteBytes(const std::uint8_t* bytes, std::size_t count, BitWriter& writer) const {
  BitWriter quick = writer;  // a variable of its own stays in registers
  std::size_t i = 0;
  for (; i + 4 <= count; i += 4) {
    for (std::size_t k = i; k < i + 4; ++k)
      quick.Add(m_byteCodes[bytes[k]].bits, m_byteCodes[bytes[k]].length);
    quick.Flush();
  }
  for (; i < count; ++i) quick.Write(m_byteCodes[bytes[i]].bits, m_byteCodes[bytes[i]].length);
  writer = quick;
}

}  // namespace tiler
