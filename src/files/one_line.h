// Text of others, for places that have one line. Any thread.
#ifndef MOSAICON_FILES_ONE_LINE_H_
#define MOSAICON_FILES_ONE_LINE_H_

#include <string>

namespace files {

// All runs of blanks, line breaks among them, become one blank; none at the ends.
std::string OneLine(const std::string& text);

}  // namespace files

#endif  // MOSAICON_FILES_ONE_LINE_H_
