// Keys by which servers prove who they are, as people compare them. Any thread.
#ifndef MOSAICON_MIRROR_HOST_KEY_H_
#define MOSAICON_MIRROR_HOST_KEY_H_

#include <curl/curl.h>

#include <string>

namespace mirror {

// "SHA256:" and 43 letters, as SSH programs show it.
std::string FingerprintOf(const curl_khkey& key);

}  // namespace mirror

#endif  // MOSAICON_MIRROR_HOST_KEY_H_
