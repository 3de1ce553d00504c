#include "mirror/manifest.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>
#include <vector>

#include "files/path_text.h"
#include "mirror/checksum.h"
#include "mirror/listing.h"

namespace mirror {

namespace {

constexpr std::string_view kFirstWords = "mosaicon-manifest 1 ";
constexpr std::string_view kPlaced = "placed";
constexpr std::string_view kStaged = "staged";
constexpr std::string_view kGone = "gone";
constexpr size_t kChecksum = 64;    // letters
constexpr size_t kNameOfFile = 32;  // letters of the checksum of its place
constexpr size_t kNotWorthIt = 64;  // lines

std::string_view NextWord(std::string_view& rest) {
  const std::string_view word = rest.substr(0, rest.find(' '));
  rest.remove_prefix(std::min(word.size() + 1, rest.size()));
  return word;
}

template <class Number>
bool ReadNumber(std::string_view text, Number& number) {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return !text.empty() && error == std::errc() && stop == end;
}

bool IsChecksum(std::string_view text) {
  return text.size() == kChecksum && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

// "a/b c", as this program writes them: somebody may have changed the file.
bool IsPath(std::string_view path) {
  while (true) {
    const size_t end = path.find('/');
    if (!IsName(path.substr(0, end))) return false;
    if (end == std::string_view::npos) return true;
    path.remove_prefix(end + 1);
  }
}

void ReadLine(std::string_view line, SentFiles& files) {
  const std::string_view word = NextWord(line);
  if (word == kGone) {
    files.erase(std::string(line));
    return;
  }
  if (word != kPlaced && word != kStaged) return;
  SentFile file;
  file.isPlaced = word == kPlaced;
  file.checksum = NextWord(line);
  const std::string_view size = NextWord(line);
  const std::string_view time = NextWord(line);
  if (!IsChecksum(file.checksum) || !ReadNumber(size, file.state.size)) return;
  if (!ReadNumber(time, file.state.time) || !IsPath(line)) return;
  files[std::string(line)] = std::move(file);
}

std::string LineOf(const std::string& path, const SentFile& file) {
  return std::string(file.isPlaced ? kPlaced : kStaged) + " " + file.checksum + " " +
         std::to_string(file.state.size) + " " + std::to_string(file.state.time) + " " + path + "\n";
}

}  // namespace

SentFiles ParseManifest(std::string_view text, const std::string& place) {
  SentFiles files;
  const std::string first = std::string(kFirstWords) + place + "\n";
  if (!text.starts_with(first)) return files;
  text.remove_prefix(first.size());
  for (size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
    ReadLine(text.substr(0, end), files);
    text.remove_prefix(end + 1);
  }
  return files;
}

std::string ManifestOf(const SentFiles& files, const std::string& place) {
  std::string text = std::string(kFirstWords) + place + "\n";
  for (const auto& [path, file] : files) text += LineOf(path, file);
  return text;
}

std::string Manifest::Open(const std::filesystem::path& folder, const std::string& place) {
  std::error_code failed;
  std::filesystem::create_directories(folder, failed);
  const std::filesystem::path path = folder / (ChecksumOf(place).substr(0, kNameOfFile) + ".manifest");
  failed = m_file.Open(path);
  if (failed == std::errc::device_or_resource_busy) return "this folder is being published already";
  if (failed) {
    m_failure = files::Utf8Of(path) + ": " + files::WordsFor(failed);
    return "";
  }
  const std::string text = m_file.Content();
  m_files = ParseManifest(text, place);
  const auto lines = static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
  // Begun, torn, or full of what does not count any more: anew. A break meanwhile makes the next run send
  // more.
  if (lines > 0 && text.ends_with('\n') && text.starts_with(std::string(kFirstWords) + place + "\n") &&
      lines < 2 * m_files.size() + kNotWorthIt) {
    return "";
  }
  if ((failed = m_file.CutTo(0))) m_failure = files::WordsFor(failed);
  Append(ManifestOf(m_files, place));
  return "";
}

const SentFile* Manifest::Find(const std::string& path) const {
  const auto found = m_files.find(path);
  return found == m_files.end() ? nullptr : &found->second;
}

void Manifest::Note(const std::string& path, const SentFile& file) {
  m_files[path] = file;
  Append(LineOf(path, file));
}

void Manifest::Forget(const std::string& path) {
  if (m_files.erase(path) > 0) Append(std::string(kGone) + " " + path + "\n");
}

void Manifest::Append(const std::string& text) {
  if (!m_file.IsOpen()) return;
  if (const std::error_code failed = m_file.Append(text)) m_failure = files::WordsFor(failed);
}

}  // namespace mirror
