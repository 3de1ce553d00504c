#include "tiler/huffman_code.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tiler {

namespace {

constexpr std::size_t kLongest = 32;  // before the lengths are limited; deeper ones count as that
using LengthCounts = std::array<std::uint32_t, kLongest + 1>;

// Symbols that occur, the rarest first; equal ones by their number, so that the result is always the same.
std::vector<std::size_t> ByCount(const std::vector<std::uint32_t>& counts) {
  std::vector<std::size_t> symbols;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] > 0) symbols.push_back(i);
  }
  std::stable_sort(symbols.begin(), symbols.end(),
                   [&](std::size_t a, std::size_t b) { return counts[a] < counts[b]; });
  return symbols;
}

// How many codes there are of each length in the best tree. Leaves come in order, and so do the nodes that
// are made of them: the two smallest are always in front of one of two queues.
LengthCounts LengthsOfBestTree(const std::vector<std::uint32_t>& counts,
                               const std::vector<std::size_t>& symbols) {
  const std::size_t leaves = symbols.size();
  std::vector<std::uint64_t> weights;
  weights.reserve(2 * leaves - 1);
  for (const std::size_t symbol : symbols) weights.push_back(counts[symbol]);
  std::vector<std::size_t> parents(2 * leaves - 1);
  std::size_t leaf = 0;
  std::size_t node = leaves;
  const auto takeSmallest = [&] {
    const bool isLeaf = leaf < leaves && (node >= weights.size() || weights[leaf] <= weights[node]);
    return isLeaf ? leaf++ : node++;
  };
  while (weights.size() < parents.size()) {
    const std::size_t first = takeSmallest();
    const std::size_t second = takeSmallest();
    parents[first] = parents[second] = weights.size();
    weights.push_back(weights[first] + weights[second]);
  }
  // From the root, which is the last, downwards.
  std::vector<std::size_t> depths(parents.size());
  LengthCounts lengths = {};
  for (std::size_t i = parents.size() - 1; i-- > 0;) {
    depths[i] = depths[parents[i]] + 1;
    if (i < leaves) ++lengths[std::min(depths[i], kLongest)];
  }
  return lengths;
}

// Shortens the longest codes, and lengthens others by as little as makes room for them.
void Limit(LengthCounts& lengths, std::size_t most) {
  std::uint64_t used = 0;  // of the room of a complete code, in codes of the longest length
  for (std::size_t length = most + 1; length <= kLongest; ++length) {
    lengths[most] += lengths[length];
    lengths[length] = 0;
  }
  for (std::size_t length = 1; length <= most; ++length) {
    used += std::uint64_t{lengths[length]} << (most - length);
  }
  for (; used > std::uint64_t{1} << most; --used) {
    // A code of the longest length and its neighbour make room by hanging below a shorter code.
    std::size_t shorter = most - 1;
    while (lengths[shorter] == 0) --shorter;
    --lengths[most];
    --lengths[shorter];
    lengths[shorter + 1] += 2;
  }
}

}  // namespace

std::vector<std::uint8_t> CodeLengths(const std::vector<std::uint32_t>& counts, int most) {
  std::vector<std::uint8_t> lengths(counts.size());
  const std::vector<std::size_t> symbols = ByCount(counts);
  if (symbols.size() == 1) lengths[symbols.front()] = 1;
  if (symbols.size() < 2) return lengths;
  LengthCounts left = LengthsOfBestTree(counts, symbols);
  Limit(left, static_cast<std::size_t>(most));
  auto length = static_cast<std::size_t>(most);
  for (const std::size_t symbol : symbols) {
    while (left[length] == 0) --length;
    --left[length];
    lengths[symbol] = static_cast<std::uint8_t>(length);
  }
  return lengths;
}

std::vector<std::uint16_t> CodesOf(const std::vector<std::uint8_t>& lengths) {
  std::array<std::uint32_t, 17> counts = {};
  for (const std::uint8_t length : lengths) ++counts[length];
  counts[0] = 0;
  std::array<std::uint32_t, 17> next = {};
  for (std::size_t length = 1; length < next.size(); ++length) {
    next[length] = (next[length - 1] + counts[length - 1]) << 1;
  }
  std::vector<std::uint16_t> codes;
  for (const std::uint8_t length : lengths) {
    std::uint32_t reversed = 0;
    std::uint32_t code = length == 0 ? 0 : next[length]++;
    for (int i = 0; i < length; ++i, code >>= 1) reversed = reversed << 1 | (code & 1);
    codes.push_back(static_cast<std::uint16_t>(reversed));
  }
  return codes;
}

}  // namespace tiler
