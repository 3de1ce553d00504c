// The body of an upload as multipart/form-data (RFC 7578), in pieces, so that a dump of any size never
// needs to be in memory. Portable: it opens no file.
#ifndef MOSAICON_CRASHRPT_MULTIPART_H_
#define MOSAICON_CRASHRPT_MULTIPART_H_

#include <cstdint>
#include <string>
#include <vector>

// One piece of the body: text, or the bytes of a file.
struct BodyPiece {
  std::string text;
  std::string filePath;  // when not empty, of this file
  uint64_t fileSize = 0;
  uint64_t Size() const { return filePath.empty() ? text.size() : fileSize; }
};

class MultipartBody {
 public:
  // The boundary must not occur in any value or file; a new GUID will do.
  explicit MultipartBody(const std::string& boundary) : m_strBoundary(boundary) {}

  // Values are UTF-8. Names and file names are plain ASCII without quotes.
  void AddField(const std::string& name, const std::string& value);
  void AddFile(const std::string& name, const std::string& fileName, const std::string& contentType,
               const std::string& path, uint64_t size);

  // Value of the header Content-Type.
  std::string ContentType() const;
  // The whole body: with the last boundary, whenever it is asked for.
  std::vector<BodyPiece> Pieces() const;

 private:
  void AddText(const std::string& text) { m_pieces.push_back({text, "", 0}); }

  std::string m_strBoundary;
  std::vector<BodyPiece> m_pieces;
};

// Bytes of all pieces.
uint64_t SizeOf(const std::vector<BodyPiece>& pieces);

#endif  // MOSAICON_CRASHRPT_MULTIPART_H_
