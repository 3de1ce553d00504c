// Runs a fuzz target without the fuzzer: over each file of the folder given, and over each file's
// beginnings, for input that stops short. Ends with 1 when there is no file; a finding stops the program.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

// Of a long file only so many.
constexpr size_t kMostBeginnings = 1000;

// From a copy of its own, so that the sanitizers see a byte too much.
void Run(const std::vector<uint8_t>& bytes, size_t size) {
  const std::vector<uint8_t> input(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

void RunFile(const std::filesystem::path& path) {
  std::printf("%s\n", path.filename().string().c_str());
  std::fflush(stdout);
  std::ifstream file(path, std::ios::binary);
  const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const size_t step = bytes.size() / kMostBeginnings + 1;
  for (size_t size = 0; size < bytes.size(); size += step) Run(bytes, size);
  Run(bytes, bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 1;
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    RunFile(entry.path());
    ++files;
  }
  std::printf("%d files\n", files);
  return files > 0 ? 0 : 1;
}
