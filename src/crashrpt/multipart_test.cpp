#include "crashrpt/multipart.h"

#include <gtest/gtest.h>

namespace {

TEST(MultipartBody, HoldsFieldsAndFilesInOrder) {
  MultipartBody body("b-1");
  body.AddField("version", "1.0 \xC3\xBC\r\n");
  body.AddFile("dump", "crash.dmp", "application/octet-stream", "C:\\x\\crash.dmp", 1234);
  EXPECT_EQ(body.ContentType(), "multipart/form-data; boundary=b-1");
  std::string text;
  for (const BodyPiece& piece : body.Pieces()) {
    text += piece.filePath.empty() ? piece.text : "[" + piece.filePath + "]";
  }
  EXPECT_EQ(text,
            "--b-1\r\n"
            "Content-Disposition: form-data; name=\"version\"\r\n"
            "Content-Type: text/plain; charset=utf-8\r\n"
            "\r\n"
            "1.0 \xC3\xBC\r\n\r\n"
            "--b-1\r\n"
            "Content-Disposition: form-data; name=\"dump\"; filename=\"crash.dmp\"\r\n"
            "Content-Type: application/octet-stream\r\n"
            "\r\n"
            "[C:\\x\\crash.dmp]\r\n"
            "--b-1--\r\n");
}

TEST(MultipartBody, KnowsItsSizeWithoutReadingTheFiles) {
  MultipartBody body("b");
  body.AddFile("f", "f", "t/t", "nowhere", 5'000'000'000);
  uint64_t texts = 0;
  for (const BodyPiece& piece : body.Pieces()) texts += piece.text.size();
  EXPECT_EQ(SizeOf(body.Pieces()), 5'000'000'000 + texts);
}

TEST(MultipartBody, EndsOnceHoweverOftenItIsAskedFor) {
  MultipartBody body("b");
  EXPECT_EQ(body.Pieces().size(), 1U);
  EXPECT_EQ(body.Pieces().size(), 1U);
  EXPECT_EQ(body.Pieces()[0].text, "--b--\r\n");
}

}  // namespace
