#include "crashrpt/upload_url.h"

#include <algorithm>

namespace {

constexpr char kEncrypted[] = "https://";
// Written like this only, so that nobody can understand it in another way.
constexpr char kLoopback[] = "http://127.0.0.1";

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

bool IsSafeUploadUrl(const std::string& url) {
  if (url.starts_with(kEncrypted)) return url.size() > sizeof kEncrypted - 1;
  if (!url.starts_with(kLoopback)) return false;
  auto rest = url.begin() + sizeof kLoopback - 1;
  if (rest != url.end() && *rest == ':') rest = std::find_if_not(rest + 1, url.end(), IsDigit);
  return rest == url.end() || *rest == '/' || *rest == '?';
}
