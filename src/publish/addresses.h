// The addresses that users give, as the program needs them. Portable; any thread.
#ifndef MOSAICON_PUBLISH_ADDRESSES_H_
#define MOSAICON_PUBLISH_ADDRESSES_H_

#include <string>

struct HostAddress {
  std::string host;
  int port = 21;
};

// "ftp.example.com", "ftp.example.com:2121", and what a browser's address bar makes of it:
// "ftp://ftp.example.com/". A port that is none stays part of the host, where it is found to be wrong.
HostAddress ParseHostAddress(const std::string& text);

// Cuts seven characters off an address with "http://" in it, wherever that stands.
std::string WithoutScheme(const std::string& webUrl);

#endif  // MOSAICON_PUBLISH_ADDRESSES_H_
