#include "mirror/curl_faults.h"

#include <gtest/gtest.h>

namespace mirror {

namespace {

CurlEnd End(CURLcode code, long answer = 0, const std::string& line = "") {
  return {.code = code,
          .answer = answer,
          .lastLine = line,
          .error = "curl's words",
          .wasInBefore = true,
          .isSending = true};
}

TEST(CurlFaults, AreWhatTheServerMeans) {
  const struct {
    CURLcode code;
    long answer;
    Fault fault;
  } ends[] = {
      {CURLE_OK, 226, Fault::kNone},
      {CURLE_LOGIN_DENIED, 530, Fault::kTooMany},
      {CURLE_PEER_FAILED_VERIFICATION, 0, Fault::kHopeless},
      {CURLE_USE_SSL_FAILED, 502, Fault::kHopeless},
      {CURLE_OPERATION_TIMEDOUT, 421, Fault::kLost},
      {CURLE_WEIRD_SERVER_REPLY, 530, Fault::kTooMany},
      {CURLE_WEIRD_SERVER_REPLY, 220, Fault::kLost},
      {CURLE_UPLOAD_FAILED, 552, Fault::kFull},
      {CURLE_UPLOAD_FAILED, 452, Fault::kFull},
      {CURLE_UPLOAD_FAILED, 550, Fault::kRefused},
      {CURLE_UPLOAD_FAILED, 553, Fault::kRefused},
      {CURLE_UPLOAD_FAILED, 426, Fault::kLost},
      {CURLE_UPLOAD_FAILED, 451, Fault::kRefused},
      {CURLE_UPLOAD_FAILED, 421, Fault::kLost},
      {CURLE_QUOTE_ERROR, 550, Fault::kRefused},
      {CURLE_QUOTE_ERROR, 421, Fault::kLost},
      {CURLE_QUOTE_ERROR, 0, Fault::kRefused},
      {CURLE_REMOTE_DISK_FULL, 0, Fault::kFull},
      {CURLE_REMOTE_FILE_NOT_FOUND, 0, Fault::kMissing},
      {CURLE_REMOTE_ACCESS_DENIED, 550, Fault::kRefused},
      {CURLE_READ_ERROR, 0, Fault::kLocal},
      {CURLE_ABORTED_BY_CALLBACK, 0, Fault::kLocal},
      {CURLE_WRITE_ERROR, 0, Fault::kRefused},
      {CURLE_OPERATION_TIMEDOUT, 0, Fault::kLost},
      {CURLE_COULDNT_CONNECT, 0, Fault::kLost},
      {CURLE_SEND_ERROR, 0, Fault::kLost},
      {CURLE_SEND_ERROR, 150, Fault::kLost},
      {CURLE_SEND_ERROR, 426, Fault::kLost},
      {CURLE_SEND_ERROR, 421, Fault::kLost},
      {CURLE_SEND_ERROR, 452, Fault::kFull},
      {CURLE_SEND_ERROR, 451, Fault::kRefused},
      {CURLE_SSH, 0, Fault::kLost},
      {CURLE_PARTIAL_FILE, 226, Fault::kLost},
  };
  for (const auto& end : ends) {
    EXPECT_EQ(OutcomeOf(End(end.code, end.answer)).fault, end.fault) << end.code << " " << end.answer;
  }
}

TEST(CurlFaults, AreHopelessBeforeTheFirstSuccess) {
  CurlEnd end = End(CURLE_COULDNT_CONNECT);
  end.wasInBefore = false;
  EXPECT_EQ(OutcomeOf(end).fault, Fault::kHopeless);
  EXPECT_EQ(OutcomeOf(end).text, "curl's words");
  end.code = CURLE_LOGIN_DENIED;
  EXPECT_EQ(OutcomeOf(end).fault, Fault::kHopeless);
}

TEST(CurlFaults, OfAGreetingAreTooManyConnections) {
  CurlEnd end =
      End(CURLE_OPERATION_TIMEDOUT, 421, "421 There are too many connections from your internet address.");
  end.isGreeting = true;
  EXPECT_EQ(OutcomeOf(end).fault, Fault::kTooMany);
  end.code = CURLE_OK;
  EXPECT_EQ(OutcomeOf(end).fault, Fault::kNone);
}

TEST(CurlFaults, OfAFolderMayMeanThatItIsMissing) {
  CurlEnd end = End(CURLE_REMOTE_ACCESS_DENIED, 550, "550 Failed to change directory.\r\n");
  end.isList = true;
  EXPECT_EQ(OutcomeOf(end).fault, Fault::kMissing);
}

TEST(CurlFaults, SayWhatTheServerSays) {
  EXPECT_EQ(OutcomeOf(End(CURLE_UPLOAD_FAILED, 550, "550 Permission denied.\r\n")).text,
            "550 Permission denied.");
  EXPECT_EQ(OutcomeOf(End(CURLE_UPLOAD_FAILED, 226, "226 Done")).text, "curl's words");
  CurlEnd silent = End(CURLE_COULDNT_CONNECT);
  silent.error.clear();
  EXPECT_EQ(OutcomeOf(silent).text, curl_easy_strerror(CURLE_COULDNT_CONNECT));
}

TEST(Legible, ShowsTextOfOthers) {
  EXPECT_EQ(Legible("550 a\tb\r\n c"), "550 a b c");
  EXPECT_EQ(Legible("ä€𝄞"), "ä€𝄞");
  EXPECT_EQ(Legible("a\x1b[2Jb\x7f"), "a?[2Jb?");
  EXPECT_EQ(Legible("\xe4 \xff \xc3"), "? ? ?");
  EXPECT_EQ(Legible("\xc0\xaf"), "??");
  EXPECT_LE(Legible(std::string(100000, 'x')).size(), 300U);
}

}  // namespace

}  // namespace mirror
