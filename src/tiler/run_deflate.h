// Compresses filtered rows of photographs.
#ifndef MOSAICON_TILER_RUN_DEFLATE_H_
#define MOSAICON_TILER_RUN_DEFLATE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tiler {

// Makes zlib streams (RFC 1950) that say nothing but bytes and runs of equal ones. What stands at some
// distance before is not looked at: in the filtered rows of a photograph hardly anything repeats, and looking
// for it is what takes a compressor's time. Other data come out larger than need be. One thread at a time.
class RunDeflater {
 public:
  // Appends the stream. The same bytes always give the same stream.
  void Compress(const std::vector<std::uint8_t>& bytes, std::string& out);

 private:
  // A byte, or a run of the byte before.
  struct Token {
    std::uint16_t symbol;  // of deflate's literals and lengths
    std::uint8_t extraBits;
    std::uint8_t extra;
  };
  class BitWriter;

  // bytes from begin to end; what stands before them can be run on.
  void CompressBlock(const std::vector<std::uint8_t>& bytes, std::size_t begin, std::size_t end, bool isLast,
                     BitWriter& writer);
  void Tokenize(const std::vector<std::uint8_t>& bytes, std::size_t begin, std::size_t end);

  std::vector<Token> m_tokens;
  std::vector<std::uint32_t> m_counts;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_RUN_DEFLATE_H_
