#include "crashrpt/http_upload.h"

#include <windows.h>
#include <winhttp.h>
#include <winsock2.h>

#include <memory>
#include <optional>
#include <vector>

#include "crashrpt/upload_url.h"
#include "files/wide_text.h"
#include "handles/unique_handle.h"

namespace {

// Milliseconds for one step each.
constexpr int kResolveBound = 10000;
constexpr int kConnectBound = 10000;
constexpr int kSendBound = 20000;
constexpr int kReceiveBound = 20000;
constexpr size_t kChunk = size_t{64} * 1024;

struct InternetCloser {
  void operator()(HINTERNET handle) const { WinHttpCloseHandle(handle); }
};
using Internet = std::unique_ptr<void, InternetCloser>;

struct Address {
  std::wstring host;
  std::wstring path;
  INTERNET_PORT port = 0;
  bool secure = false;
};

std::optional<Address> ParseUrl(const std::string& url) {
  const std::wstring wide = WideFromAnsi(url);
  URL_COMPONENTS parts = {};
  parts.dwStructSize = sizeof parts;
  parts.dwSchemeLength = parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength =
      static_cast<DWORD>(-1);
  if (!WinHttpCrackUrl(wide.c_str(), 0, 0, &parts) || parts.dwHostNameLength == 0) return std::nullopt;
  Address address;
  address.host.assign(parts.lpszHostName, parts.dwHostNameLength);
  address.path.assign(parts.lpszUrlPath, parts.dwUrlPathLength);
  address.path.append(parts.lpszExtraInfo, parts.dwExtraInfoLength);
  address.port = parts.nPort;
  address.secure = parts.nScheme == INTERNET_SCHEME_HTTPS;
  return address;
}

std::string ErrorText(DWORD error) {
  switch (error) {
    case ERROR_WINHTTP_TIMEOUT:
    case WSAETIMEDOUT:  // as Wine tells it
      return "The server did not answer in time.";
    case ERROR_WINHTTP_CANNOT_CONNECT:
    case ERROR_WINHTTP_NAME_NOT_RESOLVED:
      return "The server cannot be reached.";
    case ERROR_WINHTTP_SECURE_FAILURE:
      return "The server could not prove who it is.";
    default:
      return "The connection to the server failed (error " + std::to_string(error) + ").";
  }
}

// Returns the error code of Windows, 0 when all went well.
DWORD WriteText(HINTERNET request, const char* bytes, size_t size) {
  while (size > 0) {
    DWORD written = 0;
    if (!WinHttpWriteData(request, bytes, static_cast<DWORD>(size), &written)) return GetLastError();
    bytes += written;
    size -= written;
  }
  return ERROR_SUCCESS;
}

DWORD WriteFileBytes(HINTERNET request, const BodyPiece& piece) {
  const UniqueHandle file(CreateFileA(piece.filePath.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (file.get() == INVALID_HANDLE_VALUE) return GetLastError();
  std::vector<char> chunk(kChunk);
  uint64_t rest = piece.fileSize;
  while (rest > 0) {
    DWORD read = 0;
    const auto wanted = static_cast<DWORD>(rest < kChunk ? rest : kChunk);
    if (!ReadFile(file.get(), chunk.data(), wanted, &read, nullptr)) return GetLastError();
    if (read == 0) return ERROR_HANDLE_EOF;  // shorter than it was
    if (const DWORD error = WriteText(request, chunk.data(), read)) return error;
    rest -= read;
  }
  return ERROR_SUCCESS;
}

DWORD WriteBody(HINTERNET request, const std::vector<BodyPiece>& pieces) {
  for (const BodyPiece& piece : pieces) {
    const DWORD error = piece.filePath.empty() ? WriteText(request, piece.text.data(), piece.text.size())
                                               : WriteFileBytes(request, piece);
    if (error != ERROR_SUCCESS) return error;
  }
  return ERROR_SUCCESS;
}

std::string Post(HINTERNET request, const MultipartBody& body) {
  const std::vector<BodyPiece> pieces = body.Pieces();
  const uint64_t size = SizeOf(pieces);
  if (size > MAXDWORD) return "The report is too large to be sent.";
  const std::wstring header = L"Content-Type: " + WideFromAnsi(body.ContentType());
  if (!WinHttpSendRequest(request, header.c_str(), static_cast<DWORD>(-1), WINHTTP_NO_REQUEST_DATA, 0,
                          static_cast<DWORD>(size), 0)) {
    return ErrorText(GetLastError());
  }
  if (const DWORD error = WriteBody(request, pieces)) return ErrorText(error);
  if (!WinHttpReceiveResponse(request, nullptr)) return ErrorText(GetLastError());
  DWORD status = 0;
  DWORD statusSize = sizeof status;
  if (!WinHttpQueryHeaders(request, WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                           WINHTTP_HEADER_NAME_BY_INDEX, &status, &statusSize, WINHTTP_NO_HEADER_INDEX)) {
    return ErrorText(GetLastError());
  }
  const bool accepted = status >= 200 && status <= 299;
  return accepted ? "" : "The server did not accept the report (HTTP " + std::to_string(status) + ").";
}

}  // namespace

std::string UploadByHttp(const std::string& url, const MultipartBody& body) {
  if (!IsSafeUploadUrl(url)) return "Reports are sent to https addresses only, not to " + url + ".";
  const std::optional<Address> address = ParseUrl(url);
  if (!address) return "The address of the server is not valid: " + url;
  const DWORD proxy = address->secure ? WINHTTP_ACCESS_TYPE_DEFAULT_PROXY : WINHTTP_ACCESS_TYPE_NO_PROXY;
  const Internet session(
      WinHttpOpen(L"crashsender/1.0", proxy, WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS, 0));
  if (session == nullptr) return ErrorText(GetLastError());
  WinHttpSetTimeouts(session.get(), kResolveBound, kConnectBound, kSendBound, kReceiveBound);
  const Internet connection(WinHttpConnect(session.get(), address->host.c_str(), address->port, 0));
  if (connection == nullptr) return ErrorText(GetLastError());
  const Internet request(WinHttpOpenRequest(connection.get(), L"POST", address->path.c_str(), nullptr,
                                            WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES,
                                            address->secure ? WINHTTP_FLAG_SECURE : 0));
  if (request == nullptr) return ErrorText(GetLastError());
  DWORD receiveBound = kReceiveBound;
  WinHttpSetOption(request.get(), WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT, &receiveBound,
                   sizeof receiveBound);
  DWORD never = WINHTTP_OPTION_REDIRECT_POLICY_NEVER;
  WinHttpSetOption(request.get(), WINHTTP_OPTION_REDIRECT_POLICY, &never, sizeof never);
  return Post(request.get(), body);
}
