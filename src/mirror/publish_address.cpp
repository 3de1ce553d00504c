#include "mirror/publish_address.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

#include "kvtools/ascii.h"

namespace mirror {

namespace {

struct KnownScheme {
  Scheme scheme;
  const char* name;
  int port;
};

constexpr std::array<KnownScheme, 5> kSchemes = {{{Scheme::kFtp, "ftp", 21},
                                                  {Scheme::kFtpes, "ftpes", 21},
                                                  {Scheme::kFtps, "ftps", 990},
                                                  {Scheme::kSftp, "sftp", 22},
                                                  {Scheme::kFile, "file", 0}}};
constexpr int kHighestPort = 65535;
constexpr std::string_view kUnreserved =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

const KnownScheme& Known(Scheme scheme) {
  return *std::find_if(kSchemes.begin(), kSchemes.end(),
                       [&](const KnownScheme& known) { return known.scheme == scheme; });
}

std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// nullopt when a "%" is followed by no number, or by one that no name may hold.
std::optional<std::string> PercentDecoded(std::string_view text) {
  std::string decoded;
  for (size_t i = 0; i < text.size(); ++i) {
    int code = static_cast<unsigned char>(text[i]);
    if (text[i] == '%') {
      const std::string_view digits = text.substr(i + 1, 2);
      const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
      if (digits.size() != 2 || error != std::errc() || stop != digits.data() + 2) return std::nullopt;
      i += 2;
    }
    if (code < 0x20 || code == 0x7F) return std::nullopt;
    decoded += static_cast<char>(code);
  }
  return decoded;
}

std::string ReadPort(std::string_view text, int& port) {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, port);
  if (error == std::errc() && stop == end && port > 0 && port <= kHighestPort) return "";
  // Not what stands there: it may be a part of a password.
  return "the port is no number from 1 to " + std::to_string(kHighestPort);
}

// "user@host:port"
std::string ReadAuthority(std::string_view text, PublishAddress& address) {
  if (const size_t at = text.rfind('@'); at != std::string_view::npos) {
    const std::string_view user = text.substr(0, at);
    if (user.find(':') != std::string_view::npos) return "a password must not stand in the address";
    const auto decoded = PercentDecoded(user);
    if (!decoded) return "the name of the user cannot be read";
    address.user = *decoded;
    text.remove_prefix(at + 1);
  }
  std::string_view rest;
  if (text.starts_with('[')) {
    const size_t end = text.find(']');
    if (end == std::string_view::npos) return "the bracket of the host is not closed";
    address.host = text.substr(1, end - 1);
    rest = text.substr(end + 1);
  } else {
    address.host = text.substr(0, text.find(':'));
    rest = text.substr(address.host.size());
  }
  if (address.host.empty()) return "the address has no host";
  const auto isOdd = [](char letter) {
    return static_cast<unsigned char>(letter) <= 0x20 || letter == 0x7F || letter == '%' || letter == '\\';
  };
  if (std::any_of(address.host.begin(), address.host.end(), isOdd)) {
    return "\"" + address.host + "\" is no host";
  }
  if (rest.empty()) return "";
  if (!rest.starts_with(':')) return "the address has something behind its host";
  return ReadPort(rest.substr(1), address.port);
}

bool HasStepUp(const std::string& path) {
  return ("/" + path + "/").find("/../") != std::string::npos;
}

}  // namespace

std::string PublishAddress::Text() const {
  std::string text = std::string(NameOf(scheme)) + "://";
  if (!user.empty()) text += PercentEncoded(user) + "@";
  text += host.find(':') == std::string::npos ? host : "[" + host + "]";
  if (port != 0 && port != Known(scheme).port) text += ":" + std::to_string(port);
  return text + "/" + PercentEncoded(path);
}

PublishAddress PublishAddress::Below(const std::string& name) const {
  PublishAddress below = *this;
  below.path += below.path.empty() || below.path.ends_with('/') ? name : "/" + name;
  return below;
}

const char* NameOf(Scheme scheme) {
  return Known(scheme).name;
}

int PortOf(const PublishAddress& address) {
  return address.port != 0 ? address.port : Known(address.scheme).port;
}

std::string PercentEncoded(const std::string& path) {
  std::string encoded;
  for (const char letter : path) {
    if (kUnreserved.find(letter) != std::string_view::npos) {
      encoded += letter;
    } else {
      const auto code = static_cast<unsigned char>(letter);
      encoded += {'%', kHexDigits[code >> 4], kHexDigits[code & 15]};
    }
  }
  return encoded;
}

std::string ParsePublishAddress(const std::string& text, PublishAddress& address) {
  address = {};
  std::string rest = Trimmed(text);
  if (const size_t colon = rest.find("://"); colon != std::string::npos) {
    const std::string name = LowerAscii(rest.substr(0, colon));
    const auto found = std::find_if(kSchemes.begin(), kSchemes.end(),
                                    [&](const KnownScheme& known) { return name == known.name; });
    if (found == kSchemes.end()) {
      return "\"" + name +
             "\" is not known: addresses begin with ftp://, ftpes://, ftps://, sftp:// or file://";
    }
    address.scheme = found->scheme;
    rest.erase(0, colon + 3);
  }
  const size_t slash = std::min(rest.find('/'), rest.size());
  const std::string authority = rest.substr(0, slash);
  auto path = PercentDecoded(std::string_view(rest).substr(slash));
  if (!path) return "the folder in the address cannot be read";
  if (HasStepUp(*path)) return "the folder in the address must not contain \"..\"";
  if (address.scheme == Scheme::kFile) {
    // "file://server/share" and "file:///C:/maps"
    if (!authority.empty()) path->insert(0, "//" + authority);
    const bool hasDrive = path->size() > 2 && (*path)[0] == '/' && (*path)[2] == ':';
    if (hasDrive) path->erase(0, 1);
    while (path->size() > 1 && path->ends_with('/')) path->pop_back();
    address.path = *path;
    return address.path.empty() ? "the address has no folder" : "";
  }
  while (path->ends_with('/')) path->pop_back();
  if (path->starts_with('/')) path->erase(0, 1);
  address.path = *path;
  return ReadAuthority(authority, address);
}

}  // namespace mirror
