#include "mirror/web_check.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "kvtools/ascii.h"
#include "mirror/checksum.h"
#include "mirror/publish_address.h"
#include "mirror/publish_plan.h"
#include "mirror/remote_path.h"

namespace mirror {

namespace {

constexpr size_t kMostFiles = 200;
constexpr size_t kEnoughProblems = 20;
constexpr size_t kNobodyThere = 3;  // failures to connect, one after the other
constexpr long kOk = 200;
constexpr long kNotFound = 404;

struct KnownType {
  std::string_view ending;
  std::array<std::string_view, 3> types;  // any of them
};

constexpr std::string_view kKmlType = "application/vnd.google-earth.kml+xml";
constexpr std::array<KnownType, 8> kTypes = {{
    {".kml", {kKmlType, kKmlType, kKmlType}},
    {".html", {"text/html", "application/xhtml+xml", "text/html"}},
    {".png", {"image/png", "image/png", "image/png"}},
    {".jpg", {"image/jpeg", "image/jpeg", "image/jpeg"}},
    {".webp", {"image/webp", "image/webp", "image/webp"}},
    {".js", {"text/javascript", "application/javascript", "application/x-javascript"}},
    {".css", {"text/css", "text/css", "text/css"}},
    {".xml", {"text/xml", "application/xml", "application/xml"}},
}};

const KnownType* TypeOf(const std::string& path) {
  const std::string name = LowerAscii(path);
  const auto found = std::find_if(kTypes.begin(), kTypes.end(),
                                  [&](const KnownType& known) { return name.ends_with(known.ending); });
  return found == kTypes.end() ? nullptr : &*found;
}

// "text/html; charset=utf-8" is "text/html".
std::string Bare(const std::string& type) {
  std::string bare = LowerAscii(type.substr(0, type.find(';')));
  while (bare.ends_with(' ')) bare.pop_back();
  return bare;
}

std::string FindTypeProblem(const std::string& path, const std::string& type) {
  const KnownType* known = TypeOf(path);
  if (known == nullptr) return "";
  if (std::find(known->types.begin(), known->types.end(), Bare(type)) != known->types.end()) return "";
  std::string problem = type.empty() ? "the web server names no type" : "the web server calls it " + type;
  problem += ", not " + std::string(known->types[0]);
  // Of the pictures a browser finds out by itself.
  if (known->ending != ".kml") return problem;
  return problem + ". Apache needs the line: AddType application/vnd.google-earth.kml+xml .kml";
}

std::string FindProblem(const LocalFile& file, const WebAnswer& answer) {
  if (answer.status == 0) return answer.error;
  if (answer.status == kNotFound) return "it is not found (404); capital and small letters count";
  if (answer.status != kOk) return "the web server answers " + std::to_string(answer.status);
  if (answer.size != file.state.size || answer.checksum != ChecksumOfFile(file.source)) {
    return "the web server has another one, of " + std::to_string(answer.size) + " bytes in place of " +
           std::to_string(file.state.size);
  }
  return FindTypeProblem(file.path, answer.type);
}

}  // namespace

std::vector<LocalFile> FilesToLookAt(const LocalTree& tree, std::size_t most) {
  std::vector<LocalFile> documents;
  std::vector<LocalFile> others;
  for (const LocalFile& file : tree.files) {
    if (IsHidden(file.path)) continue;
    (RankOf(file.path) > 0 ? documents : others).push_back(file);
  }
  // What people open comes first.
  std::stable_sort(documents.begin(), documents.end(), [](const LocalFile& left, const LocalFile& right) {
    return RankOf(left.path) > RankOf(right.path);
  });
  if (documents.size() > most) documents.resize(most);
  const std::size_t sample =
      std::min(others.size(), std::max<std::size_t>(most / 4, most - documents.size()));
  // Evenly, with the first and the last.
  for (std::size_t i = 0; i < sample; ++i) {
    documents.push_back(others[sample == 1 ? 0 : i * (others.size() - 1) / (sample - 1)]);
  }
  return documents;
}

WebReport CheckOnTheWeb(WebVisitor& visitor, const std::string& address, const LocalTree& tree,
                        const std::function<bool()>& isStopped) {
  WebReport report;
  const std::string folder = address.ends_with('/') ? address : address + "/";
  std::set<std::string> told;  // one server setting wrong is one problem
  std::size_t silent = 0;
  for (const LocalFile& file : FilesToLookAt(tree, kMostFiles)) {
    if (isStopped()) {
      report.wasStopped = true;
      break;
    }
    const WebAnswer answer = visitor.Get(folder + PercentEncoded(file.path), file.state.size + 1);
    ++report.looked;
    const std::string problem = FindProblem(file, answer);
    silent = answer.status == 0 ? silent + 1 : 0;
    const bool isOfType = answer.status == kOk && problem == FindTypeProblem(file.path, answer.type);
    if (!problem.empty() && (!isOfType || told.insert(problem).second)) {
      report.problems.push_back(file.path + ": " + problem);
    }
    if (silent >= kNobodyThere || report.problems.size() >= kEnoughProblems) break;
  }
  return report;
}

std::string FindWebAddressProblem(const std::string& address) {
  const std::string lower = LowerAscii(address);
  const bool isWeb = lower.starts_with("http://") || lower.starts_with("https://");
  if (!isWeb) return "a web address begins with http:// or https://";
  const auto isOdd = [](char letter) { return static_cast<unsigned char>(letter) <= 0x20 || letter == 0x7F; };
  if (std::any_of(address.begin(), address.end(), isOdd)) return "a web address has no blanks";
  return "";
}

}  // namespace mirror
