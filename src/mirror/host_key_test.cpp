#include "mirror/host_key.h"

#include <gtest/gtest.h>

namespace mirror {

namespace {

// As ssh-keygen -l shows it.
TEST(HostKey, IsShownAsItsFingerprint) {
  const std::string key = "AAAAC3NzaC1lZDI1NTE5AAAAIAABAgMEBQYHCAkKCwwNDg8QERITFBUWFxgZGhscHR4f";
  const curl_khkey encoded = {.key = key.c_str(), .len = 0, .keytype = CURLKHTYPE_ED25519};
  const std::string fingerprint = FingerprintOf(encoded);
  EXPECT_EQ(fingerprint, "SHA256:ZkAslGjFiUHdGf/WUL8rQvkib4PTvQatUV0OUQSncCA");
  const std::string raw = std::string("\0\0\0\x0bssh-ed25519\0\0\0\x20", 19) +
                          std::string("\0\1\2\3\4\5\6\7\x08\x09\x0a\x0b\x0c\x0d\x0e\x0f", 16) +
                          std::string("\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1a\x1b\x1c\x1d\x1e\x1f", 16);
  const curl_khkey plain = {.key = raw.data(), .len = raw.size(), .keytype = CURLKHTYPE_ED25519};
  EXPECT_EQ(FingerprintOf(plain), fingerprint);
}

}  // namespace

}  // namespace mirror
