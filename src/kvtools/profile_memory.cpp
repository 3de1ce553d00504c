// Settings that live as long as the process: for tests of portable code.

#include <map>
#include <string>

#include "kvtools/copy_bounded.h"
#include "kvtools/kvtools.h"

namespace {

// Product, section and key, joined by a character that no name contains, to the value.
std::map<std::string, std::string>& Store() {
  static std::map<std::string, std::string> store;
  return store;
}

std::string& Product() {
  static std::string product = "Mosaicon";
  return product;
}

std::string FullName(const char* section, const char* key) {
  return Product() + '\n' + section + '\n' + key;
}

}  // namespace

void KVT_SetProfileProduct(const char* product) {
  Product() = product;
}

int KVT_GetUserProfileString(const char* section, const char* key, const char* defaultValue, char* buffer,
                             int size) {
  const auto found = Store().find(FullName(section, key));
  if (found != Store().end()) return CopyBounded(found->second, buffer, size);
  return CopyBounded(defaultValue != nullptr ? defaultValue : "", buffer, size);
}

bool KVT_WriteUserProfileString(const char* section, const char* key, const char* value) {
  Store()[FullName(section, key)] = value;
  return true;
}
