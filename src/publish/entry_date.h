// The date of a remote entry, as the list of the upload dialog shows it. Portable; any thread.
#ifndef MOSAICON_PUBLISH_ENTRY_DATE_H_
#define MOSAICON_PUBLISH_ENTRY_DATE_H_

#include <string>

#include "net/ftp_listing.h"

// "2014/03/07 10:05".
std::string FormatEntryDate(const FtpDirEntry& entry);

#endif  // MOSAICON_PUBLISH_ENTRY_DATE_H_
