// Looks at a published folder as a visitor of the web site would: are the files there, whole, and of the type
// that viewers expect? web_visitor.h asks a real server.
//
// Every page and KML is looked at, of all other files a sample. One thread.
#ifndef MOSAICON_MIRROR_WEB_CHECK_H_
#define MOSAICON_MIRROR_WEB_CHECK_H_

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "mirror/local_tree.h"

namespace mirror {

struct WebAnswer {
  long status = 0;         // of HTTP; 0: there was no answer, see error
  std::string type;        // as the server has it, such as "text/html; charset=utf-8"
  std::uint64_t size = 0;  // bytes that came
  std::string checksum;    // of them
  std::string error;
};

class WebVisitor {
 public:
  virtual ~WebVisitor() = default;
  // Reads at most this many bytes.
  virtual WebAnswer Get(const std::string& url, std::uint64_t mostBytes) = 0;
};

struct WebReport {
  std::size_t looked = 0;             // files
  std::vector<std::string> problems;  // sentences, the most important first
  bool wasStopped = false;
};

// Those that are looked at, in this order.
std::vector<LocalFile> FilesToLookAt(const LocalTree& tree, std::size_t most);

// address: "http://..." or "https://...", of the folder itself. isStopped is asked before each file.
WebReport CheckOnTheWeb(WebVisitor& visitor, const std::string& address, const LocalTree& tree,
                        const std::function<bool()>& isStopped);

// Empty when it is one for http or https.
std::string FindWebAddressProblem(const std::string& address);

}  // namespace mirror

#endif  // MOSAICON_MIRROR_WEB_CHECK_H_
