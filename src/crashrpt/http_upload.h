// One HTTP POST, with limits for every step. Win32 (WinHTTP). Blocks; any thread.
#ifndef MOSAICON_CRASHRPT_HTTP_UPLOAD_H_
#define MOSAICON_CRASHRPT_HTTP_UPLOAD_H_

#include <string>

#include "crashrpt/multipart.h"

// Sends body to url, which IsSafeUploadUrl (https needs a valid certificate). Redirections are not followed:
// the body would be lost. Returns what went wrong, as a sentence for the user; empty when the server answered
// with a status of 200 to 299.
std::string UploadByHttp(const std::string& url, const MultipartBody& body);

#endif  // MOSAICON_CRASHRPT_HTTP_UPLOAD_H_
