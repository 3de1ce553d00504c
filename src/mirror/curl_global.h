// libcurl as a whole.
#ifndef MOSAICON_MIRROR_CURL_GLOBAL_H_
#define MOSAICON_MIRROR_CURL_GLOBAL_H_

namespace mirror {

// To be called before anything else of it; any thread, as often as one likes.
void InitialiseCurl();

}  // namespace mirror

#endif  // MOSAICON_MIRROR_CURL_GLOBAL_H_
