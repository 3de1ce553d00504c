// Understands what the tiling script writes while it works. Portable.
#ifndef MOSAICON_JOB_PROGRESS_RECORD_H_
#define MOSAICON_JOB_PROGRESS_RECORD_H_

#include <cstddef>

// Size in bytes of one read from the script's output.
inline constexpr size_t kProgressChunk = 4096;

// Percent (0 to 100 from a well-behaved script) in the first record of a chunk: the number between
// the first and the second blank, times 100, truncated toward zero. The text runs to the first zero
// byte, or to the end of the buffer; it may hold the rest of an earlier, longer chunk. 0 when there
// are not two blanks or no number; numbers beyond the range of int are cut to it.
int ParseProgressChunk(const char (&buffer)[kProgressChunk]);

#endif  // MOSAICON_JOB_PROGRESS_RECORD_H_
