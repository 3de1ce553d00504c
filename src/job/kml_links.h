// Turns the relative links of a KML file into absolute ones. Portable; text in the narrow code page,
// without any conversion.
#ifndef MOSAICON_JOB_KML_LINKS_H_
#define MOSAICON_JOB_KML_LINKS_H_

#include <string>

// Rewrites kmlPath in place: every "<href>" on a line of its own inside a "<Link>" element gets
// baseUrl (without a final slash), subFolder (which begins with "/", or is empty) and "/" before its
// target. Nothing is escaped. The new text is written to "temp_web.kml" in the same folder ("temp_web2.kml"
// and so on where there is such a file), which then takes the place of the file.
//
// Returns 1 when the file was rewritten, 0 when nothing was changed: an empty path or URL, a file that
// cannot be opened, read or replaced, or a full disk.
int RewriteKmlLinks(std::string kmlPath, std::string baseUrl, std::string subFolder);

#endif  // MOSAICON_JOB_KML_LINKS_H_
