// The index page: one block for each published data set, with its picture and links. The layout is
// fixed, oddities included (an anchor opened where one should close, a stray "</p>", a <div> that every
// block leaves open): pages already out there look like this, and browsers show it as meant.
// Portable; any thread.
#ifndef MOSAICON_PUBLISH_INDEX_PAGE_H_
#define MOSAICON_PUBLISH_INDEX_PAGE_H_

#include <string>
#include <vector>

#include "publish/remote_data_entry.h"

// The text of the page, in Windows-1252 and with "\n" line ends. Entries that are not complete are left
// out. webUrl is the address of the folder that holds the page, without "http://" and without "/" at
// its end; dateText stands in the update line.
//
// Names come out as they are, save for what would break the page or the link: < > & " ' are written as
// HTML entities, and in addresses everything that a browser would not send as the server listed it is
// percent-encoded byte by byte. A blank is left alone, because browsers send it as "%20".
std::string MakeIndexPage(const std::vector<CRemoteDataEntry>& entries, const std::string& webUrl,
                          const std::string& dateText);

// Where the page can be seen.
std::string IndexPageAddress(const std::string& webUrl);

#endif  // MOSAICON_PUBLISH_INDEX_PAGE_H_
