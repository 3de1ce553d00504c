#include "mirror/listing.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>
#include <string>

#include "kvtools/ascii.h"

namespace mirror {

namespace {

constexpr size_t kPermissions = 10;  // "-rw-r--r--"
constexpr std::string_view kDigits = "0123456789";
constexpr std::array<std::string_view, 12> kMonths = {"jan", "feb", "mar", "apr", "may", "jun",
                                                      "jul", "aug", "sep", "oct", "nov", "dec"};

std::optional<std::uint64_t> Number(std::string_view text) {
  std::uint64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (text.empty() || error != std::errc() || stop != end) return std::nullopt;
  return number;
}

bool HasForm(std::string_view text, std::string_view form) {
  return text.size() == form.size() &&
         std::equal(text.begin(), text.end(), form.begin(), [](char letter, char expected) {
           return expected == '9' ? kDigits.find(letter) != std::string_view::npos : letter == expected;
         });
}

// One field after the other, between blanks.
class Fields {
 public:
  explicit Fields(std::string_view line) : m_rest(line) {}

  std::string_view Next() {
    m_rest.remove_prefix(std::min(m_rest.find_first_not_of(' '), m_rest.size()));
    const std::string_view field = m_rest.substr(0, m_rest.find(' '));
    m_rest.remove_prefix(field.size());
    return field;
  }
  // Behind the one blank that follows a field: a name may begin with another.
  std::string_view Rest() const { return m_rest.substr(std::min<size_t>(1, m_rest.size())); }
  bool AtEnd() const { return m_rest.find_first_not_of(' ') == std::string_view::npos; }

 private:
  std::string_view m_rest;
};

EntryKind KindOfFact(const std::string& type) {
  if (type == "file") return EntryKind::kFile;
  if (type == "dir") return EntryKind::kFolder;
  return type.find("link") != std::string::npos ? EntryKind::kLink : EntryKind::kOther;
}

std::optional<RemoteEntry> ParseFacts(std::string_view line) {
  const size_t end = line.find("; ");
  const size_t sign = line.find('=');
  if (end == std::string_view::npos || sign == std::string_view::npos || sign > end) return std::nullopt;
  RemoteEntry entry = {.name = std::string(line.substr(end + 2)), .kind = EntryKind::kOther, .size = {}};
  std::string_view facts = line.substr(0, end);
  while (!facts.empty()) {
    const std::string_view fact = facts.substr(0, facts.find(';'));
    facts.remove_prefix(std::min(fact.size() + 1, facts.size()));
    const size_t equals = fact.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    const std::string name = LowerAscii(std::string(fact.substr(0, equals)));
    const std::string_view value = fact.substr(equals + 1);
    if (name == "type") entry.kind = KindOfFact(LowerAscii(std::string(value)));
    if (name == "size") entry.size = Number(value);
  }
  return entry;
}

// Passes the three fields of the time when they come next, in either way to write them.
bool PassTime(Fields& fields, std::string_view first) {
  if (HasForm(first, "9999-99-99")) {
    const std::string_view time = fields.Next();
    return time.size() >= 5 && HasForm(time.substr(0, 5), "99:99");
  }
  if (std::find(kMonths.begin(), kMonths.end(), LowerAscii(std::string(first))) == kMonths.end())
    return false;
  if (!Number(fields.Next())) return false;
  const std::string_view time = fields.Next();
  return HasForm(time, "99:99") || HasForm(time, "9:99") || HasForm(time, "9999");
}

EntryKind KindOfLetter(char letter) {
  switch (letter) {
    case '-':
      return EntryKind::kFile;
    case 'd':
      return EntryKind::kFolder;
    case 'l':
      return EntryKind::kLink;
    default:
      return EntryKind::kOther;
  }
}

std::optional<RemoteEntry> ParseUnix(std::string_view line) {
  Fields fields(line);
  const std::string_view permissions = fields.Next();
  if (permissions.size() < kPermissions) return std::nullopt;
  if (std::string_view("-dlbcps").find(permissions[0]) == std::string_view::npos) return std::nullopt;
  // Between size and name is the time; before the size there may be a group or not.
  std::string_view size;
  while (!fields.AtEnd()) {
    const std::string_view field = fields.Next();
    Fields ahead = fields;
    if (Number(size) && PassTime(ahead, field)) {
      const EntryKind kind = KindOfLetter(permissions[0]);
      std::string_view name = ahead.Rest();
      if (kind == EntryKind::kLink) name = name.substr(0, name.find(" -> "));
      return RemoteEntry{.name = std::string(name), .kind = kind, .size = Number(size)};
    }
    size = field;
  }
  return std::nullopt;
}

std::optional<RemoteEntry> ParseDos(std::string_view line) {
  Fields fields(line);
  const std::string_view date = fields.Next();
  if (!HasForm(date, "99-99-99") && !HasForm(date, "99-99-9999")) return std::nullopt;
  const std::string_view time = fields.Next();
  if (time.size() < 5 || !HasForm(time.substr(0, 5), "99:99")) return std::nullopt;
  const std::string_view size = fields.Next();
  std::string_view name = fields.Rest();
  if (size == "<DIR>") {
    name.remove_prefix(std::min(name.find_first_not_of(' '), name.size()));
    return RemoteEntry{.name = std::string(name), .kind = EntryKind::kFolder, .size = {}};
  }
  if (!Number(size)) {
    const bool isLink = size == "<SYMLINKD>" || size == "<JUNCTION>" || size == "<SYMLINK>";
    if (!isLink) return std::nullopt;
    name.remove_prefix(std::min(name.find_first_not_of(' '), name.size()));
    return RemoteEntry{
        .name = std::string(name.substr(0, name.find(" ["))), .kind = EntryKind::kLink, .size = {}};
  }
  return RemoteEntry{.name = std::string(name), .kind = EntryKind::kFile, .size = Number(size)};
}

// The folder itself and the one above it, under whatever name.
bool IsOfTheFolderItself(std::string_view line) {
  const std::string facts = LowerAscii(std::string(line.substr(0, line.find("; "))));
  return facts.find("type=cdir") != std::string::npos || facts.find("type=pdir") != std::string::npos;
}

std::optional<RemoteEntry> ParseLine(std::string_view line) {
  if (auto entry = ParseUnix(line)) return entry;
  if (auto entry = ParseDos(line)) return entry;
  auto entry = ParseFacts(line);
  if (entry && IsOfTheFolderItself(line)) entry->name = ".";
  return entry;
}

}  // namespace

bool IsName(std::string_view name) {
  if (name.empty() || name == "." || name == "..") return false;
  return std::none_of(name.begin(), name.end(), [](char letter) {
    const auto code = static_cast<unsigned char>(letter);
    return code < 0x20 || code == 0x7F || letter == '/' || letter == '\\';
  });
}

Listing ParseListing(std::string_view text) {
  Listing listing;
  std::set<std::string> names;
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    auto entry = ParseLine(line);
    if (!entry) {
      listing.isUnderstood &= Fields(line).AtEnd() || line.starts_with("total ");
    } else if (IsName(entry->name) && names.insert(entry->name).second) {
      listing.entries.push_back(std::move(*entry));
    }
  }
  return listing;
}

}  // namespace mirror
