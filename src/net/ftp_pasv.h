// Understands the server's answer to PASV, "Entering Passive Mode (127,0,0,1,4,210)". Portable.
#ifndef MOSAICON_NET_FTP_PASV_H_
#define MOSAICON_NET_FTP_PASV_H_

#include <string>

struct PasvResult {
  bool hasBracket = false;  // without "(" there is nothing to read: the other fields stay as they are
  // "127.0.0.1"; empty when one of the four numbers is missing, no number, or above 255.
  std::string address;
  // First number times 256 plus second: 0 when one is missing or no number. Not checked against the
  // range of ports, but never beyond 16,842,495 whatever the text says.
  int port = 0;
};

// text is the reply without its code; null counts as "". Blanks around a number do no harm, nor does a
// missing ")".
PasvResult ParsePasvReply(const char* text);

// False for what no server can have: 0.x.x.x, which some systems take for themselves, the groups, reserved
// addresses and broadcast from 224.x.x.x on, and no address at all. dotted is as in PasvResult.
bool IsServerAddress(const std::string& dotted);

#endif  // MOSAICON_NET_FTP_PASV_H_
