// What the end of a transfer means, in our terms. Any thread.
#ifndef MOSAICON_MIRROR_CURL_FAULTS_H_
#define MOSAICON_MIRROR_CURL_FAULTS_H_

#include <curl/curl.h>

#include <string>

#include "mirror/remote_store.h"

namespace mirror {

struct CurlEnd {
  CURLcode code = CURLE_OK;
  long answer = 0;           // the last number that an FTP server said
  std::string lastLine;      // and its line
  std::string error;         // curl's own words
  bool wasInBefore = false;  // whether this server has let us in already
  bool isList = false;
  bool isSending = false;
  bool isGreeting = false;  // the line is the first of a new connection
};

Outcome OutcomeOf(const CurlEnd& end);

// For people and for one line: valid UTF-8 without control characters, not endless.
std::string Legible(const std::string& text);

}  // namespace mirror

#endif  // MOSAICON_MIRROR_CURL_FAULTS_H_
