// Settings in the registry: HKEY_CURRENT_USER\Software\<maker>\<product>\<section>, one text value
// per key.

#include <windows.h>

#include <string>
#include <vector>

#include "kvtools/copy_bounded.h"
#include "kvtools/kvtools.h"
#include "maker.h"

namespace {

std::string& Product() {
  static std::string product = "Mosaicon";
  return product;
}

std::string SectionPath(const char* section) {
  return std::string("Software\\") + kMakerName + "\\" + Product() + "\\" + section;
}

// Reads a whole text value; false when there is none or it is not a text.
bool ReadValue(const std::string& path, const char* key, std::string& value) {
  DWORD size = 0;
  if (RegGetValueA(HKEY_CURRENT_USER, path.c_str(), key, RRF_RT_REG_SZ, nullptr, nullptr, &size) !=
      ERROR_SUCCESS) {
    return false;
  }
  std::vector<char> buffer(size + 1);
  size = static_cast<DWORD>(buffer.size());
  if (RegGetValueA(HKEY_CURRENT_USER, path.c_str(), key, RRF_RT_REG_SZ, nullptr, buffer.data(), &size) !=
      ERROR_SUCCESS) {
    return false;
  }
  value.assign(buffer.data());
  return true;
}

}  // namespace

void KVT_SetProfileProduct(const char* product) {
  Product() = product;
}

int KVT_GetUserProfileString(const char* section, const char* key, const char* defaultValue, char* buffer,
                             int size) {
  std::string value;
  if (ReadValue(SectionPath(section), key, value)) return CopyBounded(value, buffer, size);
  return CopyBounded(defaultValue != nullptr ? defaultValue : "", buffer, size);
}

bool KVT_WriteUserProfileString(const char* section, const char* key, const char* value) {
  const std::string text = value;
  return RegSetKeyValueA(HKEY_CURRENT_USER, SectionPath(section).c_str(), key, REG_SZ, text.c_str(),
                         static_cast<DWORD>(text.size() + 1)) == ERROR_SUCCESS;
}
