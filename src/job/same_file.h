// Whether two paths lead to one file, however they are written: letter case, short names, links.
#ifndef MOSAICON_JOB_SAME_FILE_H_
#define MOSAICON_JOB_SAME_FILE_H_

#include <string>

// False when one of them does not exist or cannot be looked at.
bool IsSameFile(const std::string& left, const std::string& right);

#endif  // MOSAICON_JOB_SAME_FILE_H_
