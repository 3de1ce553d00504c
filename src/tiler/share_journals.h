// The journals of a run and of those that share its work, in the folder that they all write to.
#ifndef MOSAICON_TILER_SHARE_JOURNALS_H_
#define MOSAICON_TILER_SHARE_JOURNALS_H_

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tiler/request.h"

namespace tiler {

// In the output folder.
std::filesystem::path JournalOf(const std::filesystem::path& folder, const std::optional<Share>& share);

// Throws TilerError when another run writes what a run with this share would write; without a share, when any
// run is at work in the folder.
void CheckNobodyIsAtWork(const std::filesystem::path& folder, const std::optional<Share>& share);

// Those of all shares of a map, each complete. run: as the journals have it. Throws TilerError, which says
// what is missing.
std::vector<std::filesystem::path> CompleteShares(const std::filesystem::path& folder,
                                                  const std::string& run);

// When the map is complete: of all runs that worked on it.
void RemoveJournals(const std::filesystem::path& folder);

}  // namespace tiler

#endif  // MOSAICON_TILER_SHARE_JOURNALS_H_
