// printf-style formatting into texts of limited length. A text that does not fit is refused, never
// cut: half a command line would do something else than the user asked for. Portable.
#ifndef MOSAICON_JOB_BOUNDED_TEXT_H_
#define MOSAICON_JOB_BOUNDED_TEXT_H_

#include <cstddef>
#include <optional>
#include <string>

// Bytes of a path or an argument text, and of an option text, each with its terminator.
inline constexpr size_t kMaxPathText = 4096;
inline constexpr size_t kMaxOptionText = 1024;

// The formatted text, or nullopt when it needs size bytes or more without its terminator.
#if defined(__MINGW32__)
[[gnu::format(__MINGW_PRINTF_FORMAT, 2, 3)]]
#else
[[gnu::format(printf, 2, 3)]]
#endif
std::optional<std::string>
FormatBounded(size_t size, const char* format, ...);

#endif  // MOSAICON_JOB_BOUNDED_TEXT_H_
