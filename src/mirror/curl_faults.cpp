#include "mirror/curl_faults.h"

#include <algorithm>
#include <array>

#include "files/one_line.h"

namespace mirror {

namespace {

constexpr size_t kLongest = 300;  // bytes
constexpr std::array<long, 3> kFullAnswers = {422, 452, 552};
constexpr long kServiceNotAvailable = 421;
constexpr long kNotLoggedIn = 530;
constexpr long kRefusal = 400;  // this and more
constexpr long kNoDataConnection = 425;
constexpr long kConnectionClosed = 426;

// How many bytes from there on are one letter; 0 when they are none.
size_t LengthOfLetter(const std::string& text, size_t at) {
  const auto byte = [&](size_t index) {
    return static_cast<unsigned char>(index < text.size() ? text[index] : 0);
  };
  const unsigned char first = byte(at);
  if (first < 0x80) return 1;
  const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 0;
  if (first > 0xF4) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
  }
  return length;
}

std::string Words(const CurlEnd& end) {
  if (end.answer >= kRefusal && !end.lastLine.empty()) return Legible(end.lastLine);
  return Legible(end.error.empty() ? curl_easy_strerror(end.code) : end.error);
}

// The server has answered, so the line is well, but for what it says of a connection.
Fault FaultOfAnswer(const CurlEnd& end) {
  if (std::find(kFullAnswers.begin(), kFullAnswers.end(), end.answer) != kFullAnswers.end())
    return Fault::kFull;
  const bool isLost = end.answer == kNoDataConnection || end.answer == kConnectionClosed;
  return isLost ? Fault::kLost : Fault::kRefused;
}

// Before the first success nothing is worth a second try.
Outcome Lost(const CurlEnd& end) {
  return {end.wasInBefore ? Fault::kLost : Fault::kHopeless, Words(end)};
}

}  // namespace

Outcome OutcomeOf(const CurlEnd& end) {
  // curl takes this answer for a timeout wherever it comes.
  if (end.code != CURLE_OK && end.isGreeting && end.answer == kServiceNotAvailable)
    return {Fault::kTooMany, Words(end)};
  switch (end.code) {
    case CURLE_OK:
      return {};
    case CURLE_LOGIN_DENIED:
      // What was let in before has the right password: it may count connections that it has not seen the end
      // of.
      if (end.wasInBefore) return {Fault::kTooMany, Words(end)};
      return {Fault::kHopeless, "the server refuses the login: " + Words(end)};
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
      return {Fault::kHopeless, "the server cannot prove that it is the right one: " + Words(end)};
    case CURLE_USE_SSL_FAILED:
      return {Fault::kHopeless, "the server refuses an encrypted connection: " + Words(end)};
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_URL_MALFORMAT:
    case CURLE_NOT_BUILT_IN:
    case CURLE_FAILED_INIT:
      return {Fault::kHopeless, Words(end)};
    case CURLE_WEIRD_SERVER_REPLY:
      return end.answer == kNotLoggedIn ? Outcome{Fault::kTooMany, Words(end)} : Lost(end);
    case CURLE_REMOTE_FILE_NOT_FOUND:
      return {Fault::kMissing, Words(end)};
    case CURLE_REMOTE_ACCESS_DENIED:
      // Of a folder nobody can tell whether it is missing.
      return {end.isList ? Fault::kMissing : Fault::kRefused, Words(end)};
    case CURLE_REMOTE_DISK_FULL:
      return {Fault::kFull, Words(end)};
    case CURLE_UPLOAD_FAILED:
    case CURLE_QUOTE_ERROR:
    case CURLE_FTP_COULDNT_RETR_FILE:
    case CURLE_FTP_COULDNT_SET_TYPE:
      if (end.answer == kServiceNotAvailable) return Lost(end);
      if (end.answer >= kRefusal) return {FaultOfAnswer(end), Words(end)};
      return {Fault::kRefused, Words(end)};
    case CURLE_REMOTE_FILE_EXISTS:
      return {Fault::kRefused, Words(end)};
    case CURLE_READ_ERROR:
    case CURLE_ABORTED_BY_CALLBACK:
      return {Fault::kLocal, "it cannot be read, or is another one by now"};
    case CURLE_WRITE_ERROR:
      return {Fault::kRefused, "the server lists more than can be looked at"};
    default:
      // The data connection may break before the server says why.
      if (end.isSending && end.answer >= kRefusal && end.answer != kServiceNotAvailable) {
        return {FaultOfAnswer(end), Words(end)};
      }
      return Lost(end);
  }
}

std::string Legible(const std::string& text) {
  std::string legible;
  const std::string line = files::OneLine(text);
  for (size_t i = 0; i < line.size() && legible.size() < kLongest;) {
    const size_t length = LengthOfLetter(line, i);
    const auto code = static_cast<unsigned char>(line[i]);
    const bool isControl = code < 0x20 || code == 0x7F;
    legible += length == 0 || isControl ? "?" : line.substr(i, length);
    i += std::max<size_t>(length, 1);
  }
  return legible;
}

}  // namespace mirror
