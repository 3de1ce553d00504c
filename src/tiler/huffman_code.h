// Huffman codes as deflate wants them: canonical, of limited length. Portable, no state.
#ifndef MOSAICON_TILER_HUFFMAN_CODE_H_
#define MOSAICON_TILER_HUFFMAN_CODE_H_

#include <cstdint>
#include <vector>

namespace tiler {

// How long the code of each symbol is, in bits; 0 for one that does not occur. A single symbol gets 1 bit.
// The lengths are a complete code whenever there are two symbols or more. 2 to the power of most is not below
// the number of symbols.
std::vector<std::uint8_t> CodeLengths(const std::vector<std::uint32_t>& counts, int most);

// The codes of these lengths, the bit that is to be written first as the lowest.
std::vector<std::uint16_t> CodesOf(const std::vector<std::uint8_t>& lengths);

}  // namespace tiler

#endif  // MOSAICON_TILER_HUFFMAN_CODE_H_
