#include "mirror/web_visitor.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "files/path_text.h"
#include "files/utf8_text.h"
#include "mirror/checksum.h"
#include "mirror/curl_faults.h"
#include "mirror/curl_global.h"

namespace mirror {

namespace {

constexpr long kConnectSeconds = 20;
constexpr long kSeconds = 60;  // for one file
constexpr long kRedirections = 5;

}  // namespace

CurlWebVisitor::CurlWebVisitor(const std::filesystem::path& certificates, std::function<bool()> isStopped)
    : m_certificates(AnsiFromUtf8(files::Utf8Of(certificates))), m_isStopped(std::move(isStopped)) {
  InitialiseCurl();
  m_handle.reset(curl_easy_init());
  if (!m_handle) throw std::bad_alloc();
  CURL* handle = m_handle.get();
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(handle, CURLOPT_MAXREDIRS, kRedirections);
  curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
  curl_easy_setopt(handle, CURLOPT_TIMEOUT, kSeconds);
  curl_easy_setopt(handle, CURLOPT_USERAGENT, "Mosaicon");
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, OnBytes);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
  curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, OnProgress);
  curl_easy_setopt(handle, CURLOPT_XFERINFODATA, this);
#ifdef _WIN32
  curl_easy_setopt(handle, CURLOPT_SSL_OPTIONS, static_cast<long>(CURLSSLOPT_NATIVE_CA));
#endif
  if (!m_certificates.empty()) curl_easy_setopt(handle, CURLOPT_CAINFO, m_certificates.c_str());
}

WebAnswer CurlWebVisitor::Get(const std::string& url, std::uint64_t mostBytes) {
  CURL* handle = m_handle.get();
  std::array<char, CURL_ERROR_SIZE> error = {};
  m_content.clear();
  m_mostBytes = mostBytes;
  curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
  curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, error.data());
  const CURLcode code = curl_easy_perform(handle);
  curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, nullptr);
  WebAnswer answer;
  // More than was asked for is an answer as well.
  if (code != CURLE_OK && code != CURLE_WRITE_ERROR) {
    answer.error = Legible(error.front() == '\0' ? curl_easy_strerror(code) : error.data());
    return answer;
  }
  curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &answer.status);
  const char* type = nullptr;
  curl_easy_getinfo(handle, CURLINFO_CONTENT_TYPE, &type);
  answer.type = Legible(type == nullptr ? "" : type);
  answer.size = m_content.size();
  answer.checksum = ChecksumOf(m_content);
  return answer;
}

size_t CurlWebVisitor::OnBytes(char* bytes, size_t /*one*/, size_t size, void* visitor) {
  auto* self = static_cast<CurlWebVisitor*>(visitor);
  const auto room = static_cast<size_t>(self->m_mostBytes - self->m_content.size());
  self->m_content.append(bytes, std::min(size, room));
  return size <= room ? size : 0;
}

int CurlWebVisitor::OnProgress(void* visitor, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  return static_cast<CurlWebVisitor*>(visitor)->m_isStopped() ? 1 : 0;
}

}  // namespace mirror
