#include "mirror/host_key.h"

#include <openssl/evp.h>

#include <array>
#include <vector>

namespace mirror {

namespace {

using Bytes = std::vector<unsigned char>;

Bytes Base64Decoded(const std::string& text) {
  Bytes bytes(text.size() / 4 * 3 + 3);
  const int size = EVP_DecodeBlock(bytes.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                   static_cast<int>(text.size()));
  if (size < 0) return {};
  bytes.resize(static_cast<size_t>(size));
  // It counts the padding as bytes.
  for (size_t end = text.size(); end > 0 && text[end - 1] == '=' && !bytes.empty(); --end) bytes.pop_back();
  return bytes;
}

}  // namespace

std::string FingerprintOf(const curl_khkey& key) {
  const auto* raw = reinterpret_cast<const unsigned char*>(key.key);
  const Bytes bytes = key.len == 0 ? Base64Decoded(key.key) : Bytes(raw, raw + key.len);
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
  unsigned size = 0;
  EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr);
  std::array<unsigned char, std::size_t{2}* EVP_MAX_MD_SIZE> text = {};
  const int letters = EVP_EncodeBlock(text.data(), digest.data(), static_cast<int>(size));
  std::string fingerprint(text.begin(), text.begin() + letters);
  while (fingerprint.ends_with('=')) fingerprint.pop_back();
  return "SHA256:" + fingerprint;
}

}  // namespace mirror
