// Compresses filtered rows of photographs.
#ifndef MOSAICON_TILER_RUN_DEFLATE_H_
#define MOSAICON_TILER_RUN_DEFLATE_H_

#include <array>
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
  // Equal to the byte before.
  struct Run {
    std::size_t begin;
    std::size_t length;
  };
  struct Code {
    std::uint16_t bits;
    std::uint16_t length;
  };
  class BitWriter;

  // bytes from begin to end; what stands before them can be run on.
  void CompressBlock(const std::vector<std::uint8_t>& bytes, std::size_t begin, std::size_t end, bool isLast,
                     BitWriter& writer);
  // Leaves the runs, and how often each symbol occurs.
  void FindRuns(const std::uint8_t* all, std::size_t begin, std::size_t end);
  static void WriteCode(const std::vector<std::uint8_t>& lengths, BitWriter& writer);
  void WriteBytes(const std::uint8_t* bytes, std::size_t count, BitWriter& writer) const;

  std::vector<Run> m_runs;
  std::vector<std::uint32_t> m_counts;
  std::array<Code, 256> m_byteCodes = {};
  std::vector<std::uint8_t> m_out;
};

}  // namespace tiler

#endif  // MOSAICON_TILER_RUN_DEFLATE_H_
