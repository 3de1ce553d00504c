#include "crashrpt/multipart.h"

void MultipartBody::AddField(const std::string& name, const std::string& value) {
  AddText("--" + m_strBoundary + "\r\nContent-Disposition: form-data; name=\"" + name +
          "\"\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n" + value + "\r\n");
}

void MultipartBody::AddFile(const std::string& name, const std::string& fileName,
                            const std::string& contentType, const std::string& path, uint64_t size) {
  AddText("--" + m_strBoundary + "\r\nContent-Disposition: form-data; name=\"" + name + "\"; filename=\"" +
          fileName + "\"\r\nContent-Type: " + contentType + "\r\n\r\n");
  m_pieces.push_back({"", path, size});
  AddText("\r\n");
}

std::string MultipartBody::ContentType() const {
  return "multipart/form-data; boundary=" + m_strBoundary;
}

std::vector<BodyPiece> MultipartBody::Pieces() const {
  std::vector<BodyPiece> pieces = m_pieces;
  pieces.push_back({"--" + m_strBoundary + "--\r\n", "", 0});
  return pieces;
}

uint64_t SizeOf(const std::vector<BodyPiece>& pieces) {
  uint64_t size = 0;
  for (const BodyPiece& piece : pieces) size += piece.Size();
  return size;
}
