#include "batch/publish_arguments.h"

#include <gtest/gtest.h>

namespace {

using Words = std::vector<std::string>;

TEST(PublishArguments, AreThoseOfTheCommand) {
  PublishArguments arguments;
  const Words words = {"--publish",
                       "sftp://ann@example.org:2222/~/maps",
                       "--dry-run",
                       "--delete",
                       "--connections=8",
                       "--limit-rate",
                       "2M",
                       "--key",
                       "id",
                       "--agent",
                       "--host-key",
                       "SHA256:abc",
                       "--user",
                       "bob",
                       "--netrc",
                       "n",
                       "--certificates",
                       "c.pem",
                       "--verify",
                       "https://example.org/maps",
                       "--quiet",
                       "a",
                       "--",
                       "-b"};
  EXPECT_TRUE(IsAboutPublishing(words));
  EXPECT_EQ(ParsePublishArguments(words, arguments), "");
  EXPECT_EQ(arguments.address.Text(), "sftp://ann@example.org:2222/~/maps");
  EXPECT_EQ(arguments.folders, (Words{"a", "-b"}));
  EXPECT_TRUE(arguments.dryRun && arguments.deleteExtras && arguments.useAgent && arguments.quiet);
  EXPECT_EQ(arguments.connections, 8);
  EXPECT_EQ(arguments.bytesPerSecond, 2000000U);
  EXPECT_EQ(arguments.user, "bob");
  EXPECT_EQ(arguments.netrcFile, "n");
  EXPECT_EQ(arguments.keyFile, "id");
  EXPECT_EQ(arguments.hostKey, "SHA256:abc");
  EXPECT_EQ(arguments.certificates, "c.pem");
  EXPECT_EQ(arguments.webAddress, "https://example.org/maps");
}

TEST(PublishArguments, AreOthersWithoutPublish) {
  EXPECT_FALSE(IsAboutPublishing({"--target", "a", "b.tif"}));
  EXPECT_FALSE(IsAboutPublishing({"--publisher", "a"}));
  EXPECT_TRUE(IsAboutPublishing({"a", "--publish=ftp://b/"}));
}

TEST(PublishArguments, SayWhatIsWrong) {
  const std::pair<Words, const char*> cases[] = {
      {{"--publish"}, "--publish needs a value"},
      {{"--publish="}, "--publish needs a value"},
      {{"--publish", "http://a/", "b"},
       "--publish: \"http\" is not known: addresses begin with ftp://, ftpes://, ftps://, sftp:// or "
       "file://"},
      {{"--publish", "ftp://ann:secret@a/", "b"}, "--publish: a password must not stand in the address"},
      {{"--publish", "ftp://a/"}, "no folder to publish is given"},
      {{"--publish", "ftp://a/", ""}, "a folder is an empty text"},
      {{"--publish", "ftp://a/", "b", "--password", "c"}, "unknown option --password"},
      {{"--publish", "ftp://a/", "b", "--connections", "0"},
       "--connections needs a number from 1 to 16, not \"0\""},
      {{"--publish", "ftp://a/", "b", "--connections", "4x"},
       "--connections needs a number from 1 to 16, not \"4x\""},
      {{"--publish", "ftp://a/", "b", "--limit-rate", "5G"},
       "--limit-rate needs bytes a second such as 500k or 2M, not \"5G\""},
      {{"--publish", "ftp://a/", "b", "--limit-rate", "0"},
       "--limit-rate needs bytes a second such as 500k or 2M, not \"0\""},
      {{"--publish", "ftp://a/", "b", "--verify", "example.org"},
       "--verify: a web address begins with http:// or https://"},
      {{"--publish", "ftp://a/", "b", "--host-key", "abc"},
       "--host-key needs a fingerprint that begins with SHA256:"},
  };
  for (const auto& [words, problem] : cases) {
    PublishArguments arguments;
    EXPECT_EQ(ParsePublishArguments(words, arguments), problem);
  }
}

TEST(PublishArguments, AreExplained) {
  PublishArguments arguments;
  EXPECT_EQ(ParsePublishArguments({"--publish", "ftp://a/", "--help"}, arguments), "");
  EXPECT_TRUE(arguments.help);
  for (const char* option : {"--publish", "--dry-run", "--delete", "--connections", "--limit-rate", "--netrc",
                             "--key", "--agent", "--host-key", "--certificates", "--user", "--quiet"}) {
    EXPECT_NE(PublishHelp().find(option), std::string::npos) << option;
  }
}

}  // namespace
