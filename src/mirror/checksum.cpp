#include "mirror/checksum.h"

#include <openssl/evp.h>

#include <array>
#include <fstream>
#include <memory>
#include <new>

namespace mirror {

namespace {

constexpr size_t kPiece = 65536;

class Digest {
 public:
  Digest() : m_context(EVP_MD_CTX_new(), EVP_MD_CTX_free) {
    if (!m_context || EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr) != 1) throw std::bad_alloc();
  }

  void Add(std::string_view bytes) { EVP_DigestUpdate(m_context.get(), bytes.data(), bytes.size()); }

  std::string Text() {
    constexpr std::string_view kHexDigits = "0123456789abcdef";
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
    unsigned size = 0;
    EVP_DigestFinal_ex(m_context.get(), digest.data(), &size);
    std::string text;
    for (unsigned i = 0; i < size; ++i) text += {kHexDigits[digest[i] >> 4], kHexDigits[digest[i] & 15]};
    return text;
  }

 private:
  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> m_context;
};

}  // namespace

std::string ChecksumOf(std::string_view bytes) {
  Digest digest;
  digest.Add(bytes);
  return digest.Text();
}

std::optional<std::string> ChecksumOfFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  Digest digest;
  std::array<char, kPiece> piece = {};
  while (file.read(piece.data(), piece.size()) || file.gcount() > 0) {
    digest.Add({piece.data(), static_cast<size_t>(file.gcount())});
  }
  if (file.bad() || !file.eof()) return std::nullopt;
  return digest.Text();
}

}  // namespace mirror
