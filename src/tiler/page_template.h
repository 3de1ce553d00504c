// Pages with marks for what differs from map to map. Portable, no state.
#ifndef MOSAICON_TILER_PAGE_TEMPLATE_H_
#define MOSAICON_TILER_PAGE_TEMPLATE_H_

#include <map>
#include <string>
#include <string_view>

namespace tiler {

// By the names of marks.
using MarkValues = std::map<std::string_view, std::string>;

// The page with the value of each mark @NAME@ in its place; other text between such signs stays. What is put
// in is not looked at again: a title may hold whatever it likes.
std::string FilledIn(std::string_view page, const MarkValues& values);

}  // namespace tiler

#endif  // MOSAICON_TILER_PAGE_TEMPLATE_H_
