#include "publish/remote_names.h"

#include <algorithm>

namespace {

bool IsUnsafe(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7F || c == '/' || c == '\\';
}

}  // namespace

bool IsPlainRemoteName(const std::string& name) {
  if (name.empty() || name == "." || name == "..") return false;
  return std::none_of(name.begin(), name.end(), IsUnsafe);
}

std::string RemoteFolderName(std::string localName) {
  std::replace(localName.begin(), localName.end(), ' ', '_');
  return localName;
}

std::string RemotePath(const std::string& name) {
  return name.starts_with('~') ? "./" + name : name;
}
