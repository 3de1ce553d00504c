#include "crashrpt/upload_url.h"

#include <gtest/gtest.h>

namespace {

TEST(UploadUrl, IsSafeWhenNobodyCanReadAlong) {
  for (const char* url :
       {"https://a.example", "https://a.example:8443/crash?from=x", "http://127.0.0.1",
        "http://127.0.0.1:8080", "http://127.0.0.1:8080/crash", "http://127.0.0.1?x", "http://127.0.0.1/"}) {
    EXPECT_TRUE(IsSafeUploadUrl(url)) << url;
  }
}

TEST(UploadUrl, IsNotSafeOtherwise) {
  for (const char* url :
       {"", "https://", "http://a.example/", "ftp://a.example/", "a.example", "http://127.0.0.1.a.example/",
        "http://127.0.0.1@a.example/", "http://127.0.0.1:1@a.example/", "http://127.0.0.1\\.a.example/",
        "http://127.0.0.12/", "http://localhost/", "http://192.168.0.1/", " https://a.example",
        "http:127.0.0.1/"}) {
    EXPECT_FALSE(IsSafeUploadUrl(url)) << url;
  }
}

}  // namespace
