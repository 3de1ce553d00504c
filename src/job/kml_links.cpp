#include "job/kml_links.h"

#include <cstdio>
#include <cstring>
#include <memory>

#include "kvtools/split_path.h"

namespace {

constexpr int kLineBuffer = 4096;
constexpr char kHref[] = "<href>";

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Closes the file and tells whether all that was written has reached the disk.
bool CloseWritten(File file) {
  const bool written = std::ferror(file.get()) == 0;
  return std::fclose(file.release()) == 0 && written;
}

bool IsAtEnd(std::FILE* file) {
  const int next = std::getc(file);
  if (next != EOF) std::ungetc(next, file);
  return next == EOF;
}

// One line of the file after the other, each seen with what the lines before it opened.
class LinkLines {
 public:
  LinkLines(const std::string& baseUrl, const std::string& subFolder)
      : m_strPrefix(baseUrl + subFolder + "/") {}

  std::string Rewrite(const char* line) {
    if (!m_bInLink && std::strstr(line, "<Link>") != nullptr) {
      m_bInLink = true;
    } else if (m_bInLink && std::strstr(line, "</Link>") != nullptr) {
      m_bInLink = false;
    } else if (const char* href = std::strstr(line, kHref); m_bInLink && href != nullptr) {
      const char* target = href + sizeof kHref - 1;
      return std::string(line, target) + m_strPrefix + target;
    }
    return line;
  }

 private:
  const std::string m_strPrefix;
  bool m_bInLink = false;
};

// Copies input to output line by line. The result of fgets is not looked at: after a final line
// break the last read finds nothing, leaves the buffer as it was, and the last line is written
// twice. Kept on purpose; the tiling script leaves no final line break.
bool CopyLines(std::FILE* input, std::FILE* output, LinkLines& lines) {
  char line[kLineBuffer] = "";
  if (IsAtEnd(input)) return std::ferror(input) == 0;
  do {
    (void)!std::fgets(line, sizeof line, input);
    std::fputs(lines.Rewrite(line).c_str(), output);
  } while (std::feof(input) == 0 && std::ferror(input) == 0 && std::ferror(output) == 0);
  return std::ferror(input) == 0;
}

bool Exists(const std::string& path) {
  return File(std::fopen(path.c_str(), "r")) != nullptr;
}

// Beside the file. A user may have one of this name, which must outlive the rewriting.
std::string NameTemporaryFile(const std::string& kmlPath) {
  const PathParts parts = SplitPath(kmlPath);
  std::string path = JoinPath(parts.drive, parts.directory, "temp_web", "kml");
  for (int number = 2; Exists(path); ++number) {
    path = JoinPath(parts.drive, parts.directory, "temp_web" + std::to_string(number), "kml");
  }
  return path;
}

}  // namespace

int RewriteKmlLinks(std::string kmlPath, std::string baseUrl, std::string subFolder) {
  if (kmlPath.empty() || baseUrl.empty()) return 0;
  if (baseUrl.back() == '/') baseUrl.pop_back();

  const std::string temporaryPath = NameTemporaryFile(kmlPath);
  File output(std::fopen(temporaryPath.c_str(), "w+"));
  if (output == nullptr) return 0;
  File input(std::fopen(kmlPath.c_str(), "r"));
  if (input == nullptr) return 0;

  LinkLines lines(baseUrl, subFolder);
  const bool copied = CopyLines(input.get(), output.get(), lines);
  input.reset();
  if (!CloseWritten(std::move(output)) || !copied) {
    // A full or broken disk: the file stays as it was.
    std::remove(temporaryPath.c_str());
    return 0;
  }
  std::remove(kmlPath.c_str());
  if (std::rename(temporaryPath.c_str(), kmlPath.c_str()) != 0 && Exists(kmlPath)) {
    // Nobody may replace it: on Windows it is read-only, or open in another program.
    std::remove(temporaryPath.c_str());
    return 0;
  }
  // When the old file is gone and only the renaming failed, the new text keeps its temporary name.
  return 1;
}
