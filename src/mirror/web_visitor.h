// Reads files from a web server, by way of libcurl. One thread.
#ifndef MOSAICON_MIRROR_WEB_VISITOR_H_
#define MOSAICON_MIRROR_WEB_VISITOR_H_

#include <curl/curl.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "mirror/web_check.h"

namespace mirror {

class CurlWebVisitor : public WebVisitor {
 public:
  // certificates: believed besides those of the system; may be empty. isStopped is asked some times a second
  // and ends what is going on.
  CurlWebVisitor(const std::filesystem::path& certificates, std::function<bool()> isStopped);

  WebAnswer Get(const std::string& url, std::uint64_t mostBytes) override;

 private:
  struct Deleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
  };
  static size_t OnBytes(char* bytes, size_t one, size_t size, void* visitor);
  static int OnProgress(void* visitor, curl_off_t, curl_off_t, curl_off_t, curl_off_t);

  const std::string m_certificates;
  const std::function<bool()> m_isStopped;
  std::unique_ptr<CURL, Deleter> m_handle;
  std::string m_content;
  std::uint64_t m_mostBytes = 0;
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_WEB_VISITOR_H_
