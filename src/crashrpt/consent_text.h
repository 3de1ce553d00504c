// What the user is told about the contents of a report before he decides. Portable.
#ifndef MOSAICON_CRASHRPT_CONSENT_TEXT_H_
#define MOSAICON_CRASHRPT_CONSENT_TEXT_H_

#include <string>
#include <vector>

#include "crashrpt/property_area.h"

// Everything that is sent but the picture: one line each, with the name and the value of every property
// (the beginning of a long one). The lines end in "\r\n".
std::string DescribeContents(const std::vector<Property>& properties, bool withDump);

#endif  // MOSAICON_CRASHRPT_CONSENT_TEXT_H_
