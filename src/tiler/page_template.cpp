#include "tiler/page_template.h"

namespace tiler {

std::string FilledIn(std::string_view page, const MarkValues& values) {
  std::string text;
  while (!page.empty()) {
    const std::size_t mark = page.find('@');
    text += page.substr(0, mark);
    if (mark == std::string_view::npos) break;
    page.remove_prefix(mark);
    const std::size_t end = page.find('@', 1);
    const auto value = end == std::string_view::npos ? values.end() : values.find(page.substr(1, end - 1));
    if (value == values.end()) {
      text += '@';
      page.remove_prefix(1);
    } else {
      text += value->second;
      page.remove_prefix(end + 1);
    }
  }
  return text;
}

}  // namespace tiler
