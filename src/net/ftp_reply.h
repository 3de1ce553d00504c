// Understands the replies of an FTP server: "226 Done", or "220-Hello" up to a line that begins with
// "220 ". Knows nothing of sockets: lines come through an interface. Portable.
//
// Line texts have no line end, and null counts as "". Nothing here writes beyond the size given.
#ifndef MOSAICON_NET_FTP_REPLY_H_
#define MOSAICON_NET_FTP_REPLY_H_

#include <cstddef>

#include "net/net_text.h"
#include "net/string_list.h"

// The number in the first three characters: digits, with blanks or one sign before them. 0 when there is
// none.
int ReplyCode(const char* line);

// True when the fourth character is "-".
bool OpensMultiLine(const char* line);

// True when line begins with the first three characters of opening and a blank, and so ends the reply
// that opening began.
bool EndsMultiLine(const char* line, const char* opening);

// Copies line from its fifth character. At most size - 2 characters survive, one less than would fit:
// callers depend on the size of what they get.
void CopyReplyText(const char* line, char* buffer, int size);

// Copies the text between the first two double quotes, at most 260 characters and what fits. False,
// and buffer as it was, when there are no two. (A quote within a name, which servers write twice, ends
// the text like any other.)
bool QuotedPath(const char* line, char* buffer, int size);

// Where ReadReply gets its lines.
class ReplySource {
 public:
  virtual ~ReplySource() = default;

  // Puts the next line with its line end, or at most size - 1 bytes of it, and a terminator into buffer
  // and returns the number of bytes: below 1 when nothing more can be read.
  virtual int NextLine(char* buffer, size_t size) = 0;
};

// A reply of more lines, or a line of more pieces of 260 bytes, is given up: no server says so much,
// but one could go on for ever.
inline constexpr int kMaxReplyLines = 100000;

// Reads one whole reply and returns its code; 0 when nothing could be read. line receives the last
// line, which is also the last one added to lines; when nothing could be read line is empty and lines
// is as it was. A reply of several lines empties lines first, a single line is added to what is there.
// When the lines end before the reply does, what came counts. Lines are without line end; of a line
// that does not fit into line only the beginning counts, and the rest is read and forgotten, so that it
// is not taken for the next reply. A reply that is given up counts as none: 0.
int ReadReply(ReplySource& source, char (&line)[kFtpLineSize], CUT_StringList& lines);

#endif  // MOSAICON_NET_FTP_REPLY_H_
