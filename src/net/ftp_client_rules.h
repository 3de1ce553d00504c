// What the parts of the FTP client share: commands, numbers, and how a reply is judged.
#ifndef MOSAICON_NET_FTP_CLIENT_RULES_H_
#define MOSAICON_NET_FTP_CLIENT_RULES_H_

#include <cstdint>

#include "net/error_codes.h"

inline constexpr char kRetrCommand[] = "RETR %s\r\n";
inline constexpr char kStorCommand[] = "STOR %s\r\n";

inline constexpr std::int32_t kLowestDataPort = 10000, kHighestDataPort = 32000;

// How long a data connection that failed leaves the server to say so, before the next command.
inline constexpr std::int32_t kLateReplySeconds = 5;

constexpr bool IsPort(int port) {
  return port >= 1 && port <= 65535;
}

// Announces that another one follows.
constexpr bool IsPreliminary(int reply) {
  return reply >= 100 && reply <= 199;
}

// A reply code of 0 is no reply.
constexpr int CheckReply(int reply, int lowest, int highest, int failure) {
  if (reply == 0) return kNetNoResponse;
  return reply >= lowest && reply <= highest ? kNetSuccess : failure;
}

#endif  // MOSAICON_NET_FTP_CLIENT_RULES_H_
