#include "tiler/memory_file.h"

#include <cpl_vsi.h>

#include <atomic>
#include <memory>
#include <new>
#include <utility>

namespace tiler {

namespace {

struct FileCloser {
  void operator()(VSILFILE* file) const { VSIFCloseL(file); }
};

}  // namespace

MemoryFile::MemoryFile(const std::string& extension) {
  static std::atomic<int> count = 0;
  m_name = "/vsimem/mosaicon_input_" + std::to_string(++count) + extension;
}

MemoryFile::MemoryFile(MemoryFile&& other) noexcept : m_name(std::exchange(other.m_name, {})) {}

MemoryFile& MemoryFile::operator=(MemoryFile&& other) noexcept {
  std::swap(m_name, other.m_name);
  return *this;
}

MemoryFile::~MemoryFile() {
  if (!m_name.empty()) VSIUnlink(m_name.c_str());
}

void MemoryFile::Write(const std::string& text) const {
  const std::unique_ptr<VSILFILE, FileCloser> file(VSIFOpenL(m_name.c_str(), "wb"));
  if (!file || VSIFWriteL(text.data(), 1, text.size(), file.get()) != text.size()) throw std::bad_alloc();
}

std::string MemoryFile::Text() const {
  vsi_l_offset size = 0;
  const GByte* bytes = VSIGetMemFileBuffer(m_name.c_str(), &size, FALSE);
  if (bytes == nullptr) return "";
  return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

}  // namespace tiler
