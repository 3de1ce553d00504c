// Files in GDAL's memory.
#ifndef MOSAICON_TILER_MEMORY_FILE_H_
#define MOSAICON_TILER_MEMORY_FILE_H_

#include <string>

namespace tiler {

// A name that no other file has, and what is written under it is gone with this object. Any thread.
class MemoryFile {
 public:
  // extension: with its dot
  explicit MemoryFile(const std::string& extension);
  MemoryFile(MemoryFile&& other) noexcept;
  MemoryFile& operator=(MemoryFile&& other) noexcept;
  ~MemoryFile();

  // As GDAL opens it.
  const std::string& Name() const { return m_name; }
  // In place of what it holds. Throws std::bad_alloc.
  void Write(const std::string& text) const;
  // Empty when nothing was written.
  std::string Text() const;

 private:
  std::string m_name;  // empty: moved away
};

}  // namespace tiler

#endif  // MOSAICON_TILER_MEMORY_FILE_H_
