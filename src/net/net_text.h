// Small text operations of the network client: line ends, tokens, and commands that fit their buffer.
// Portable; any thread. Null texts count as empty.
#ifndef MOSAICON_NET_NET_TEXT_H_
#define MOSAICON_NET_NET_TEXT_H_

#include <cstddef>
#include <cstdio>  // __MINGW_PRINTF_FORMAT
#include <string_view>

// A command, reply line or listing line of at most 260 characters, with its terminator.
inline constexpr size_t kFtpLineSize = 261;

// Looks at the last two characters, the last one first, and replaces each that is a CR or LF by NUL.
// (So a CR before an ordinary last character cuts that character off, too.)
void TrimLineEnd(char* line);

// Copies text into a field of size bytes, one at least, cut if need be, with a terminator. The two may
// overlap.
void CopyCut(std::string_view text, char* field, size_t size);
// The same, but false and nothing copied when the text does not fit.
bool CopyWhole(std::string_view text, char* field, size_t size);
template <size_t Size>
void CopyCut(std::string_view text, char (&field)[Size]) {
  CopyCut(text, field, Size);
}

// The number of maximal runs of characters that are none of delimiters.
int CountTokens(const char* text, const char* delimiters);

// Whether the two are the same but for the case of the letters A to Z.
bool IsSameIgnoringCase(std::string_view one, std::string_view other);

// True when text holds a CR or LF. Put into a command, such a text would end it and begin another one;
// it is refused with code 137.
bool HasCommandBreak(const char* text);

// Overwrites size bytes of what must not be found later in memory, such as a password.
void Wipe(void* bytes, size_t size);

// Formats a command. One of more than 260 characters is refused: false, and buffer is empty (code 105).
#if defined(__MINGW32__)
[[gnu::format(__MINGW_PRINTF_FORMAT, 2, 3)]]
#else
[[gnu::format(printf, 2, 3)]]
#endif
bool FormatCommand(char (&buffer)[kFtpLineSize], const char* format, ...);

#endif  // MOSAICON_NET_NET_TEXT_H_
