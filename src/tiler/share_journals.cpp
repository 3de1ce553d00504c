#include "tiler/share_journals.h"

#include <cstdio>
#include <set>
#include <system_error>

#include "files/path_text.h"
#include "files/unfinished.h"
#include "files/write_file.h"
#include "tiler/tiler_error.h"
#include "tiler/unit_journal.h"

namespace tiler {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostNamed = 20;

std::string NameOfJournal(const Share& share) {
  return std::string(files::kJournalName) + "-" + std::to_string(share.index) + "-of-" +
         std::to_string(share.count);
}

// Of what begins like a journal's; nullopt when it is no share's.
std::optional<Share> ShareOfJournal(const std::string& name) {
  Share share;
  const std::string numbers = name.substr(std::string(files::kJournalName).size());
  if (std::sscanf(numbers.c_str(), "-%5d-of-%5d", &share.index, &share.count) != 2) return std::nullopt;
  if (share.index < 0 || share.index >= share.count || share.count > kMostShares) return std::nullopt;
  return NameOfJournal(share) == name ? std::optional(share) : std::nullopt;
}

// Empty where the folder cannot be looked into.
std::vector<fs::path> JournalsIn(const fs::path& folder) {
  std::vector<fs::path> journals;
  std::error_code failed;
  for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end; entry.increment(failed)) {
    const std::string name = files::Utf8Of(entry->path().filename());
    if (name == files::kJournalName || (name.starts_with(files::kJournalName) && ShareOfJournal(name)))
      journals.push_back(entry->path());
  }
  return journals;
}

// In how many shares the maps were cut whose journals are there.
std::set<int> CountsIn(const fs::path& folder) {
  std::set<int> counts;
  for (const fs::path& journal : JournalsIn(folder)) {
    if (const auto share = ShareOfJournal(files::Utf8Of(journal.filename()))) counts.insert(share->count);
  }
  return counts;
}

// "the shares 0/3 and 2/3 are missing".
std::string Sentence(const std::vector<Share>& shares, const char* what) {
  std::string names;
  for (std::size_t i = 0; i < shares.size() && i < kMostNamed; ++i) {
    const bool isLast = i + 1 == shares.size();
    if (i > 0) names += isLast ? " and " : ", ";
    names += std::to_string(shares[i].index) + "/" + std::to_string(shares[i].count);
  }
  if (shares.size() > kMostNamed) names += " and " + std::to_string(shares.size() - kMostNamed) + " more";
  return (shares.size() == 1 ? "the share " + names + " is " : "the shares " + names + " are ") + what;
}

std::vector<fs::path> JournalsOfAll(const fs::path& folder, int count) {
  std::vector<fs::path> journals(static_cast<std::size_t>(count));
  for (Share share = {0, count}; share.index < count; ++share.index) {
    journals[static_cast<std::size_t>(share.index)] = JournalOf(folder, share);
  }
  return journals;
}

// What the shares of a map have left, by what is to be said of them.
struct Lacking {
  bool areOurs = false;  // one of them at least
  std::vector<Share> missing;
  std::vector<Share> unfinished;
  std::vector<Share> ofAnotherRun;

  std::size_t Count() const { return missing.size() + unfinished.size() + ofAnotherRun.size(); }
  // Whether the user rather means these shares than others.
  bool IsNearerThan(const Lacking& other) const {
    return areOurs != other.areOurs ? areOurs : Count() < other.Count();
  }
  std::string Sentences() const {
    std::string text;
    const auto add = [&text](const std::vector<Share>& shares, const char* what) {
      if (!shares.empty()) text += (text.empty() ? "" : "; ") + Sentence(shares, what);
    };
    add(missing, "missing");
    add(unfinished, "not finished");
    add(ofAnotherRun, "of another image or of other options");
    return text;
  }
};

Lacking LackingOf(const fs::path& folder, int count, const std::string& run) {
  Lacking lacking;
  for (int index = 0; index < count; ++index) {
    const Share share = {index, count};
    const JournalState state = StateOfJournal(JournalOf(folder, share), run);
    if (state == JournalState::kNone) lacking.missing.push_back(share);
    if (state == JournalState::kComplete || state == JournalState::kUnfinished) lacking.areOurs = true;
    if (state == JournalState::kUnfinished) lacking.unfinished.push_back(share);
    if (state == JournalState::kOfAnotherRun) lacking.ofAnotherRun.push_back(share);
  }
  return lacking;
}

}  // namespace

fs::path JournalOf(const fs::path& folder, const std::optional<Share>& share) {
  return folder / (share ? NameOfJournal(*share) : files::kJournalName);
}

void CheckNobodyIsAtWork(const fs::path& folder, const std::optional<Share>& share) {
  for (const fs::path& journal : JournalsIn(folder)) {
    const bool concernsUs = !share || journal.filename() == NameOfJournal(*share);
    if (concernsUs && files::LockedFile().Open(journal) == std::errc::device_or_resource_busy) {
      throw TilerError("another run is at work in " + files::Utf8Of(folder));
    }
  }
}

std::vector<fs::path> CompleteShares(const fs::path& folder, const std::string& run) {
  std::optional<Lacking> nearest;
  for (const int count : CountsIn(folder)) {
    const Lacking lacking = LackingOf(folder, count, run);
    if (lacking.Count() == 0) return JournalsOfAll(folder, count);
    if (!nearest || lacking.IsNearerThan(*nearest)) nearest = lacking;
  }
  if (!nearest) throw TilerError("there are no shares of a map in " + files::Utf8Of(folder));
  throw TilerError(nearest->Sentences());
}

void RemoveJournals(const fs::path& folder) {
  for (const fs::path& journal : JournalsIn(folder)) {
    std::error_code ignored;
    fs::remove(journal, ignored);
  }
}

}  // namespace tiler
