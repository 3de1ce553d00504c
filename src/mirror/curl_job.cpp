#include "mirror/curl_job.h"

#include <algorithm>
#include <utility>

#include "files/path_text.h"
#include "files/utf8_text.h"
#include "mirror/curl_faults.h"
#include "mirror/host_key.h"
#include "mirror/listing.h"

namespace mirror {

namespace {

using Kind = RemoteJob::Kind;

constexpr long kConnectSeconds = 30;
constexpr long kAnswerSeconds = 60;
constexpr long kIdleSeconds = 60;
constexpr long kListSeconds = 900;
constexpr std::uint64_t kSendSeconds = 120;  // and one for so many bytes:
constexpr std::uint64_t kSlowest = 1000;
constexpr long kSshBuffer = 1 << 20;           // bytes
constexpr size_t kLongestListing = 256 << 20;  // bytes

template <class Value>
void Set(CURL* handle, CURLoption option, Value value) {
  curl_easy_setopt(handle, option, value);
}

// As the libraries behind curl open files.
std::string NarrowName(const std::filesystem::path& path) {
  return AnsiFromUtf8(files::Utf8Of(path));
}

// A word of curl's commands for SFTP.
std::string Quoted(const std::string& path) {
  std::string quoted = "\"";
  for (const char letter : path) {
    if (letter == '"' || letter == '\\') quoted += '\\';
    quoted += letter;
  }
  return quoted + "\"";
}

// "/srv", "/srv/www" for "/srv/www"
std::vector<std::string> WithFoldersAbove(const std::string& path) {
  std::vector<std::string> folders;
  for (size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1)) {
    folders.push_back(path.substr(0, slash));
  }
  folders.push_back(path);
  return folders;
}

bool IsUnknownCommand(const std::string& line) {
  return line.starts_with("500") || line.starts_with("501") || line.starts_with("502") ||
         line.starts_with("504");
}

}  // namespace

CurlJob::CurlJob(CurlSession& session, CURL* handle) : m_session(session), m_handle(handle) {}

std::unique_ptr<CurlJob> CurlJob::Enter(CurlSession& session, CURL* handle) {
  std::unique_ptr<CurlJob> job(new CurlJob(session, handle));
  job->m_isEntering = true;
  job->SetUp();
  return job;
}

CurlJob::CurlJob(CurlSession& session, CURL* handle, std::uint64_t id, const RemoteJob& job)
    : m_session(session), m_handle(handle), m_id(id), m_job(job) {
  SetUp();
}

void CurlJob::SetUp() {
  CURL* handle = m_handle;
  curl_easy_reset(handle);
  m_error = {};
  m_lastLine.clear();
  m_lines = 0;
  m_hasNewName = false;
  Set(handle, CURLOPT_PRIVATE, this);
  Set(handle, CURLOPT_ERRORBUFFER, m_error.data());
  Set(handle, CURLOPT_NOSIGNAL, 1L);
  Set(handle, CURLOPT_QUICK_EXIT, 1L);
  Set(handle, CURLOPT_PROTOCOLS_STR, "ftp,ftps,sftp");
  Set(handle, CURLOPT_REDIR_PROTOCOLS_STR, "");
  // One for the web would be asked to write, and told the password.
  Set(handle, CURLOPT_PROXY, "");
  Set(handle, CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
  Set(handle, CURLOPT_SERVER_RESPONSE_TIMEOUT, kAnswerSeconds);
  Set(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
  Set(handle, CURLOPT_LOW_SPEED_TIME, kIdleSeconds);
  Set(handle, CURLOPT_TCP_KEEPALIVE, 1L);
  Set(handle, CURLOPT_FTP_SKIP_PASV_IP, 1L);
  Set(handle, CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_NOCWD));
  Set(handle, CURLOPT_HEADERFUNCTION, OnAnswer);
  Set(handle, CURLOPT_HEADERDATA, this);
  Set(handle, CURLOPT_WRITEFUNCTION, OnListing);
  Set(handle, CURLOPT_WRITEDATA, this);
  SetUpAccess();
  if (m_isEntering || (m_job.kind != Kind::kList && m_job.kind != Kind::kSend)) {
    SetUpCommands();
  } else if (m_job.kind == Kind::kList) {
    SetUpList();
  } else {
    SetUpSending();
  }
}

void CurlJob::SetUpAccess() {
  CURL* handle = m_handle;
  const ServerAccess& access = m_session.access;
  const std::string& user = m_session.address.user.empty() ? access.user : m_session.address.user;
  if (!user.empty()) Set(handle, CURLOPT_USERNAME, user.c_str());
  if (!access.password.empty()) Set(handle, CURLOPT_PASSWORD, access.password.c_str());
  if (!access.netrcFile.empty() && access.password.empty()) {
    Set(handle, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_OPTIONAL));
    Set(handle, CURLOPT_NETRC_FILE, NarrowName(access.netrcFile).c_str());
  }
  if (m_session.IsSsh()) {
    SetUpSsh();
  } else {
    SetUpTls();
  }
}

void CurlJob::SetUpSsh() {
  CURL* handle = m_handle;
  const ServerAccess& access = m_session.access;
  long ways = 0;
  if (!access.keyFile.empty()) ways |= CURLSSH_AUTH_PUBLICKEY;
  if (access.useAgent) ways |= CURLSSH_AUTH_AGENT;
  if (!access.password.empty() || !access.netrcFile.empty())
    ways |= CURLSSH_AUTH_PASSWORD | CURLSSH_AUTH_KEYBOARD;
  Set(handle, CURLOPT_SSH_AUTH_TYPES, ways);
  if (!access.keyFile.empty()) {
    Set(handle, CURLOPT_SSH_PRIVATE_KEYFILE, NarrowName(access.keyFile).c_str());
    Set(handle, CURLOPT_KEYPASSWD, access.keyPassphrase.c_str());
  }
  Set(handle, CURLOPT_SSH_KNOWNHOSTS, NarrowName(access.knownHosts).c_str());
  Set(handle, CURLOPT_SSH_KEYFUNCTION, OnHostKey);
  Set(handle, CURLOPT_SSH_KEYDATA, this);
  // So much is under way before an answer is waited for.
  Set(handle, CURLOPT_UPLOAD_BUFFERSIZE, kSshBuffer);
}

void CurlJob::SetUpTls() {
  CURL* handle = m_handle;
  const bool mustBeEncrypted = m_session.address.scheme != Scheme::kFtp;
  Set(handle, CURLOPT_USE_SSL, static_cast<long>(mustBeEncrypted ? CURLUSESSL_ALL : CURLUSESSL_TRY));
  Set(handle, CURLOPT_FTPSSLAUTH, static_cast<long>(CURLFTPAUTH_TLS));
  // Many servers want data connections to go on with the session of the control connection. With TLS 1.3,
  // whose tickets are good for one use, this curl has too few of them.
  Set(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2) | CURL_SSLVERSION_MAX_TLSv1_2);
#ifdef _WIN32
  Set(handle, CURLOPT_SSL_OPTIONS, static_cast<long>(CURLSSLOPT_NATIVE_CA));
#endif
  const std::filesystem::path& certificates = m_session.access.certificates;
  if (!certificates.empty()) Set(handle, CURLOPT_CAINFO, NarrowName(certificates).c_str());
}

std::string CurlJob::PathOnServer(const std::string& path) const {
  if (path.empty()) return m_session.root;
  return m_session.root.ends_with('/') ? m_session.root + path : m_session.root + "/" + path;
}

void CurlJob::SetUrl(const std::string& path) {
  const PublishAddress& address = m_session.address;
  const char* scheme = address.scheme == Scheme::kFtpes ? "ftp" : NameOf(address.scheme);
  const bool isNumber = address.host.find(':') != std::string::npos;
  std::string url = std::string(scheme) + "://" + (isNumber ? "[" + address.host + "]" : address.host) + ":" +
                    std::to_string(PortOf(address)) + "/";
  // With FTP a path begins where the login leads to, unless it has a "/" of its own.
  if (m_session.IsSsh() && path.starts_with('/')) url.pop_back();
  Set(m_handle, CURLOPT_URL, (url + PercentEncoded(path)).c_str());
}

void CurlJob::SetUpList() {
  CURL* handle = m_handle;
  m_listing.clear();
  const std::string path = PathOnServer(m_job.path);
  SetUrl(path.ends_with('/') ? path : path + "/");
  Set(handle, CURLOPT_TIMEOUT, kListSeconds);
  if (m_session.IsSsh()) return;
  // Not by the path behind the command: some servers take blanks and brackets in it for something else.
  Set(handle, CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_SINGLECWD));
  m_withFacts = !m_session.lacksFacts;
  if (m_withFacts) Set(handle, CURLOPT_CUSTOMREQUEST, "MLSD");
}

void CurlJob::SetUpSending() {
  CURL* handle = m_handle;
  m_source.close();
  m_source.clear();
  m_source.open(m_job.source, std::ios::binary);
  m_read = 0;
  SetUrl(PathOnServer(m_job.path));
  Set(handle, CURLOPT_UPLOAD, 1L);
  Set(handle, CURLOPT_TIMEOUT, static_cast<long>(kSendSeconds + m_job.size / kSlowest));
  Set(handle, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(m_job.size));
  Set(handle, CURLOPT_READFUNCTION, OnRead);
  Set(handle, CURLOPT_READDATA, this);
  Set(handle, CURLOPT_SEEKFUNCTION, OnSeek);
  Set(handle, CURLOPT_SEEKDATA, this);
  const std::uint64_t rate = m_session.access.bytesPerSecond;
  if (rate == 0) return;
  const auto share = std::max<std::uint64_t>(1, rate / static_cast<unsigned>(m_session.connections));
  Set(handle, CURLOPT_MAX_SEND_SPEED_LARGE, static_cast<curl_off_t>(share));
}

void CurlJob::SetUpCommands() {
  CURL* handle = m_handle;
  SetUrl(m_isEntering && !m_session.IsSsh() ? "" : "/");
  Set(handle, CURLOPT_NOBODY, 1L);
  Set(handle, CURLOPT_TIMEOUT, kConnectSeconds + kAnswerSeconds);
  if (m_isEntering) return;
  m_commands.reset();
  for (const std::string& command : Commands()) {
    m_commands.reset(curl_slist_append(m_commands.release(), command.c_str()));
  }
  Set(handle, CURLOPT_QUOTE, m_commands.get());
}

// A star before one means that it may fail.
std::vector<std::string> CurlJob::Commands() const {
  const bool isSsh = m_session.IsSsh();
  const std::string path = PathOnServer(m_job.path);
  const std::string target = PathOnServer(m_job.target);
  const auto one = [&](const char* sshName, const char* ftpName, const std::string& word) {
    return isSsh ? sshName + (" " + Quoted(word)) : ftpName + (" " + word);
  };
  switch (m_job.kind) {
    case Kind::kMakeFolder: {
      if (!m_job.path.empty()) return {one("mkdir", "MKD", path)};
      std::vector<std::string> commands;
      for (const std::string& folder : WithFoldersAbove(path))
        commands.push_back("*" + one("mkdir", "MKD", folder));
      commands.back().erase(0, 1);
      return commands;
    }
    case Kind::kDelete:
      return {one("rm", "DELE", path)};
    case Kind::kRemoveFolder:
      return {one("rmdir", "RMD", path)};
    case Kind::kRename:
    case Kind::kReplace: {
      std::vector<std::string> commands;
      if (m_deletesFirst) commands.push_back("*" + one("rm", "DELE", target));
      if (isSsh) {
        commands.push_back("rename " + Quoted(path) + " " + Quoted(target));
      } else {
        commands.push_back("RNFR " + path);
        commands.push_back("RNTO " + target);
      }
      return commands;
    }
    default:
      return {};
  }
}

bool CurlJob::HasOtherWay(const Outcome& outcome) const {
  if (m_isEntering) return false;
  if (m_job.kind == Kind::kList) return m_withFacts && IsUnknownCommand(m_lastLine);
  if (m_job.kind != Kind::kReplace || outcome.fault != Fault::kRefused || m_deletesFirst) return false;
  // Only where it is the target that is in the way: without the file that comes in its place it must stay.
  return m_session.IsSsh() ? outcome.text.find("not found") == std::string::npos : m_hasNewName;
}

void CurlJob::TakeOtherWay() {
  if (m_job.kind == Kind::kList) m_session.lacksFacts = true;
  if (m_job.kind == Kind::kReplace) m_deletesFirst = true;
  SetUp();
}

FinishedJob CurlJob::Finish(CURLcode code) {
  FinishedJob finished = {.id = m_id, .outcome = TellOutcome(code), .entries = {}};
  m_source.close();
  if (finished.outcome.fault != Fault::kNone) return finished;
  if (m_isEntering) {
    const char* entry = nullptr;
    curl_easy_getinfo(m_handle, CURLINFO_FTP_ENTRY_PATH, &entry);
    m_session.isIn = true;
    const std::string home = entry == nullptr ? "/" : entry;
    const std::string& path = m_session.address.path;
    const bool isInHome = m_session.IsSsh() ? path == "~" || path.starts_with("~/") : !path.starts_with('/');
    const std::string rest =
        !m_session.IsSsh() || !isInHome ? path : path.substr(std::min<size_t>(2, path.size()));
    m_session.root = isInHome ? home : rest.starts_with('/') ? "" : "/";
    if (isInHome && !rest.empty() && !home.ends_with('/')) m_session.root += '/';
    m_session.root += rest;
  }
  if (m_job.kind == Kind::kList && !m_isEntering) TakeListing(finished);
  return finished;
}

void CurlJob::TakeListing(FinishedJob& finished) const {
  Listing listing = ParseListing(m_listing);
  finished.entries = std::move(listing.entries);
  if (listing.isUnderstood) return;
  finished.entries.clear();
  // Not missing: what is there must not be taken for nothing.
  finished.outcome = {Fault::kIllegible, "the server lists the folder in a way that is not understood"};
}

Outcome CurlJob::TellOutcome(CURLcode code) {
  if (code == CURLE_OK) return {};
  if (code == CURLE_PEER_FAILED_VERIFICATION && m_session.hasChangedHostKey) {
    return {Fault::kHopeless,
            "the key of the host is not the one that is known: somebody may be between you and the server"};
  }
  if (code == CURLE_PEER_FAILED_VERIFICATION && !m_session.unknownHostKey.empty()) {
    return {Fault::kHopeless, "the key of the host is not known yet: " + m_session.unknownHostKey};
  }
  CurlEnd end = {.code = code,
                 .answer = 0,
                 .lastLine = m_lastLine,
                 .error = m_error.data(),
                 .wasInBefore = m_session.isIn,
                 .isList = m_job.kind == Kind::kList && !m_isEntering,
                 .isSending = m_job.kind == Kind::kSend && !m_isEntering,
                 .isGreeting = false};
  long connects = 0;
  curl_easy_getinfo(m_handle, CURLINFO_RESPONSE_CODE, &end.answer);
  curl_easy_getinfo(m_handle, CURLINFO_NUM_CONNECTS, &connects);
  end.isGreeting = m_lines == 1 && connects > 0;
  return OutcomeOf(end);
}

size_t CurlJob::OnAnswer(char* text, size_t /*one*/, size_t size, void* job) {
  auto* self = static_cast<CurlJob*>(job);
  self->m_lastLine.assign(text, size);
  ++self->m_lines;
  if (self->m_lastLine.starts_with("350")) self->m_hasNewName = true;
  // Not in a greeting, which anybody may have written.
  if (self->m_lines > 1 && self->m_lastLine.starts_with("234")) self->m_session.isEncrypted = true;
  return size;
}

size_t CurlJob::OnListing(char* text, size_t /*one*/, size_t size, void* job) {
  auto* self = static_cast<CurlJob*>(job);
  if (self->m_listing.size() + size > kLongestListing) return 0;
  self->m_listing.append(text, size);
  return size;
}

size_t CurlJob::OnRead(char* buffer, size_t /*one*/, size_t size, void* job) {
  auto* self = static_cast<CurlJob*>(job);
  const auto most = static_cast<size_t>(std::min<std::uint64_t>(size, self->m_job.size - self->m_read));
  if (most == 0) return 0;
  self->m_source.read(buffer, static_cast<std::streamsize>(most));
  // A file that ends too early must not end the transfer well.
  if (static_cast<size_t>(self->m_source.gcount()) != most) return CURL_READFUNC_ABORT;
  self->m_read += most;
  self->m_session.bytesSent += most;
  return most;
}

int CurlJob::OnSeek(void* job, curl_off_t offset, int origin) {
  auto* self = static_cast<CurlJob*>(job);
  if (origin != SEEK_SET || offset < 0) return CURL_SEEKFUNC_FAIL;
  self->m_source.clear();
  self->m_source.seekg(offset);
  self->m_read = static_cast<std::uint64_t>(offset);
  return self->m_source ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_FAIL;
}

int CurlJob::OnHostKey(CURL* /*handle*/, const curl_khkey* /*known*/, const curl_khkey* found,
                       curl_khmatch match, void* job) {
  CurlSession& session = static_cast<CurlJob*>(job)->m_session;
  if (match == CURLKHMATCH_OK) return CURLKHSTAT_FINE;
  session.hasChangedHostKey = match == CURLKHMATCH_MISMATCH;
  if (session.hasChangedHostKey) return CURLKHSTAT_REJECT;
  const std::string fingerprint = FingerprintOf(*found);
  if (fingerprint == session.access.acceptedHostKey) return CURLKHSTAT_FINE_ADD_TO_FILE;
  session.unknownHostKey = fingerprint;
  return CURLKHSTAT_REJECT;
}

}  // namespace mirror
