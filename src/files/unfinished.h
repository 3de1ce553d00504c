// What tells that a folder with a map is not finished: by what its maker leaves there until the end.
#ifndef MOSAICON_FILES_UNFINISHED_H_
#define MOSAICON_FILES_UNFINISHED_H_

namespace files {

// Of the name of a file that is not complete yet. Short, because of the path length that Windows allows. Such
// a name depends on nothing but the final one, so a later run into the same folder takes up what a killed one
// left.
inline constexpr const char* kPartialSuffix = ".~mos";

// The names of the journals of a tile pyramid begin with it. They are removed when the map is complete.
inline constexpr const char* kJournalName = ".mosaicon-tiles";

}  // namespace files

#endif  // MOSAICON_FILES_UNFINISHED_H_
