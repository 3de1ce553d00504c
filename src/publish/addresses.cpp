#include "publish/addresses.h"

#include <cstdlib>
#include <string_view>

#include "kvtools/ascii.h"

namespace {

constexpr char kHttp[] = "http://";
constexpr size_t kHttpLength = 7;
constexpr std::string_view kFtp = "ftp://";
constexpr char kBlanks[] = " \t";
constexpr size_t kLongestPort = 5;
constexpr int kHighestPort = 65535;

std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// In whatever letters the scheme is written.
bool BeginsWithFtp(const std::string& text) {
  return LowerAscii(text.substr(0, kFtp.size())) == kFtp;
}

// 0 when the text is no port.
int PortNumber(const std::string& text) {
  if (text.empty() || text.size() > kLongestPort) return 0;
  if (text.find_first_not_of("0123456789") != std::string::npos) return 0;
  const int port = std::atoi(text.c_str());
  return port <= kHighestPort ? port : 0;
}

}  // namespace

HostAddress ParseHostAddress(const std::string& text) {
  HostAddress address;
  address.host = Trimmed(text);
  if (BeginsWithFtp(address.host)) address.host.erase(0, kFtp.size());
  while (address.host.ends_with('/')) address.host.pop_back();
  const size_t colon = address.host.rfind(':');
  if (colon == std::string::npos) return address;
  const int port = PortNumber(address.host.substr(colon + 1));
  if (port == 0) return address;
  address.port = port;
  address.host.erase(colon);
  return address;
}

std::string WithoutScheme(const std::string& webUrl) {
  return webUrl.find(kHttp) != std::string::npos ? webUrl.substr(kHttpLength) : webUrl;
}
