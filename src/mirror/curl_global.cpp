#include "mirror/curl_global.h"

#include <curl/curl.h>

#include <mutex>

namespace mirror {

void InitialiseCurl() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

}  // namespace mirror
