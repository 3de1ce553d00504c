// The names under which files wait on the server until all of them are there. They depend on the final name
// alone, so that a later run finds what an earlier one has sent.
#ifndef MOSAICON_MIRROR_STAGED_NAME_H_
#define MOSAICON_MIRROR_STAGED_NAME_H_

#include <string>
#include <string_view>

namespace mirror {

// Behind the name and not before it: some servers keep silent about names that begin with a dot.
inline constexpr std::string_view kStagedSuffix = ".~new";

inline std::string StagedName(const std::string& path) {
  return path + std::string(kStagedSuffix);
}

inline bool IsStagedName(std::string_view path) {
  return path.ends_with(kStagedSuffix);
}

}  // namespace mirror

#endif  // MOSAICON_MIRROR_STAGED_NAME_H_
