#include "mirror/checksum.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace mirror {

namespace {

TEST(Checksum, IsSha256) {
  EXPECT_EQ(ChecksumOf(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(ChecksumOf("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Checksum, IsThatOfAllOfAFile) {
  const TemporaryFolder folder;
  const std::string bytes = std::string(200000, 'x') + std::string(1, '\0') + "\r\n\x1a end";
  WriteFile(folder.Path("large"), bytes);
  EXPECT_EQ(ChecksumOfFile(folder.Path("large")), ChecksumOf(bytes));
  WriteFile(folder.Path("piece"), bytes.substr(0, 65536));
  EXPECT_EQ(ChecksumOfFile(folder.Path("piece")), ChecksumOf(bytes.substr(0, 65536)));
  EXPECT_EQ(ChecksumOfFile(folder.Path("missing")), std::nullopt);
  EXPECT_EQ(ChecksumOfFile(folder.Path()), std::nullopt) << "a folder";
}

}  // namespace

}  // namespace mirror
