// What the start-up works out from texts: the version to show and the input list of the command
// line. Portable; text in the ANSI code page.
#ifndef MOSAICON_APP_START_UP_TEXT_H_
#define MOSAICON_APP_START_UP_TEXT_H_

#include <string>

// "1,4,2,7" and "1.4.2.7" become "1.4.2"; a version with fewer points is kept whole, with points.
std::string ShortVersion(const std::string& moduleVersion);

// The orthophotos named on the command line, in lower case and without quotes: what follows the
// quoted program path. programPath is the full path of the executable. A command line that begins
// with the unquoted path has no input list.
std::string InputListFromCommandLine(const std::string& commandLine, const std::string& programPath);

#endif  // MOSAICON_APP_START_UP_TEXT_H_
