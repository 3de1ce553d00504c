#include "ui/dropping.h"

// After windows.h.
#include <shlobj.h>

#include <cstring>

namespace {

// The header, then the paths, each with its end, then one more end.
std::vector<char> MakeBlock(const std::vector<std::string>& paths) {
  DROPFILES header = {};
  header.pFiles = sizeof header;
  std::vector<char> block(sizeof header);
  std::memcpy(block.data(), &header, sizeof header);
  for (const std::string& path : paths)
    block.insert(block.end(), path.c_str(), path.c_str() + path.size() + 1);
  block.push_back('\0');
  return block;
}

}  // namespace

bool DropFiles(const Program& program, const Window& window, const std::vector<std::string>& paths) {
  const std::vector<char> block = MakeBlock(paths);
  void* there =
      VirtualAllocEx(program.Process(), nullptr, block.size(), MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
  if (there == nullptr ||
      !WriteProcessMemory(program.Process(), there, block.data(), block.size(), nullptr)) {
    return false;
  }
  window.Post(WM_DROPFILES, reinterpret_cast<WPARAM>(there));
  return true;
}
