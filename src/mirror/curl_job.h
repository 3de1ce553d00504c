// One job on its way through libcurl. One thread.
#ifndef MOSAICON_MIRROR_CURL_JOB_H_
#define MOSAICON_MIRROR_CURL_JOB_H_

#include <curl/curl.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "mirror/publish_address.h"
#include "mirror/remote_store.h"
#include "mirror/server_access.h"

namespace mirror {

struct CurlListDeleter {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using CurlList = std::unique_ptr<curl_slist, CurlListDeleter>;

// What all jobs of one store have in common, and learn from one another.
struct CurlSession {
  PublishAddress address;
  ServerAccess access;
  std::string root;   // the folder of the store, from the server's own "/" on; known after the first job
  bool isIn = false;  // the server has let us in
  bool lacksFacts = false;     // it does not know MLSD
  bool isEncrypted = false;    // the last connection that was opened was
  std::string unknownHostKey;  // "SHA256:...", of a host that was refused for it
  bool hasChangedHostKey = false;
  std::uint64_t bytesSent = 0;
  int connections = 1;

  bool IsSsh() const { return address.scheme == Scheme::kSftp; }
};

class CurlJob {
 public:
  // Enter: no job, but getting in, which tells the folder of the login. Session and handle must outlive it;
  // the handle is as new afterwards, but for what it knows of connections.
  static std::unique_ptr<CurlJob> Enter(CurlSession& session, CURL* handle);
  CurlJob(CurlSession& session, CURL* handle, std::uint64_t id, const RemoteJob& job);
  ~CurlJob() { curl_easy_reset(m_handle); }
  CurlJob(const CurlJob&) = delete;
  CurlJob& operator=(const CurlJob&) = delete;

  std::uint64_t Id() const { return m_id; }
  const RemoteJob& Job() const { return m_job; }
  bool IsEntering() const { return m_isEntering; }

  // The same job in another way, where the server may like that better; false when there is none left.
  bool HasOtherWay(const Outcome& outcome) const;
  void TakeOtherWay();

  FinishedJob Finish(CURLcode code);

 private:
  CurlJob(CurlSession& session, CURL* handle);

  void SetUp();
  void SetUpAccess();
  void SetUpSsh();
  void SetUpTls();
  void SetUpList();
  void SetUpSending();
  void SetUpCommands();
  std::vector<std::string> Commands() const;
  void SetUrl(const std::string& path);
  std::string PathOnServer(const std::string& path) const;
  Outcome TellOutcome(CURLcode code);
  void TakeListing(FinishedJob& finished) const;

  static size_t OnAnswer(char* text, size_t one, size_t size, void* job);
  static size_t OnListing(char* text, size_t one, size_t size, void* job);
  static size_t OnRead(char* buffer, size_t one, size_t size, void* job);
  static int OnSeek(void* job, curl_off_t offset, int origin);
  static int OnHostKey(CURL* handle, const curl_khkey* known, const curl_khkey* found, curl_khmatch match,
                       void* job);

  CurlSession& m_session;
  CURL* m_handle;
  std::uint64_t m_id = 0;
  RemoteJob m_job;
  bool m_isEntering = false;
  bool m_withFacts = false;     // the listing is asked for by MLSD
  bool m_hasNewName = false;    // the server has found what is to be renamed
  bool m_deletesFirst = false;  // before a rename
  std::array<char, CURL_ERROR_SIZE> m_error = {};
  std::string m_lastLine;
  int m_lines = 0;  // that the server has said
  std::string m_listing;
  std::ifstream m_source;
  std::uint64_t m_read = 0;
  CurlList m_commands;
};

}  // namespace mirror

#endif  // MOSAICON_MIRROR_CURL_JOB_H_
