// Where reports may be sent to. Portable.
#ifndef MOSAICON_CRASHRPT_UPLOAD_URL_H_
#define MOSAICON_CRASHRPT_UPLOAD_URL_H_

#include <string>

// Whether what is sent to url can be read on its way by nobody: https, or http to a loopback address given
// as a number (127.0.0.1, for servers of tests), which never leaves the computer.
bool IsSafeUploadUrl(const std::string& url);

#endif  // MOSAICON_CRASHRPT_UPLOAD_URL_H_
