#include "batch/arguments.h"

#include <gtest/gtest.h>

#include "job/job_settings.h"

namespace {

using Words = std::vector<std::string>;

TEST(BatchArguments, AreReadInAnyOrder) {
  BatchArguments arguments;
  ASSERT_EQ(
      ParseBatchArguments({"a.tif",  "--title",      "My map", "--target=d:\\out", "--url",  "http://h/x",
                           "folder", "--google-key", "KEY",    "--transparency",   "FF8000", "--resampling",
                           "cubic",  "--tiles",      "auto",   "--overwrite",      "yes",    "--quiet",
                           "--",     "--odd.tif"},
                          arguments),
      "");
  EXPECT_EQ(arguments.inputs, (Words{"a.tif", "folder", "--odd.tif"}));
  EXPECT_EQ(arguments.title, "My map");
  EXPECT_EQ(arguments.target, "d:\\out");
  EXPECT_EQ(arguments.url, "http://h/x");
  EXPECT_EQ(arguments.googleKey, "KEY");
  EXPECT_EQ(arguments.transparency, 0x0080FFU);
  EXPECT_EQ(arguments.resampling, 3);
  EXPECT_EQ(arguments.tiles, tiler::TileFormat::kAuto);
  EXPECT_EQ(arguments.overwrite, true);
  EXPECT_TRUE(arguments.quiet);
}

TEST(BatchArguments, HaveDefaults) {
  BatchArguments arguments;
  ASSERT_EQ(ParseBatchArguments({"a.tif", "--target", "d:\\out"}, arguments), "");
  EXPECT_EQ(arguments.title + arguments.googleKey, "");
  EXPECT_EQ(arguments.url, std::nullopt);
  EXPECT_EQ(arguments.transparency, 0U);
  EXPECT_EQ(arguments.resampling, 0);
  EXPECT_EQ(arguments.tiles, tiler::TileFormat::kPng);
  EXPECT_EQ(arguments.overwrite, std::nullopt);
  EXPECT_FALSE(arguments.quiet);
}

TEST(BatchArguments, SayWhatIsWrong) {
  struct Case {
    Words words;
    const char* problem;
  };
  const Case cases[] = {
      {{}, "no orthophoto or folder is given"},
      {{"--target", "x"}, "no orthophoto or folder is given"},
      {{"a.tif"}, "--target is missing: name the folder for the result"},
      {{"a.tif", "--target"}, "--target needs a value"},
      {{"a.tif", "--frobnicate"}, "unknown option --frobnicate"},
      {{"a.tif", "--frobnicate=1"}, "unknown option --frobnicate"},
      {{"-x"}, "unknown option -x"},
      {{""}, "an input is an empty text"},
      {{"--quiet=yes"}, "unknown option --quiet"},
      {{"--transparency", "FFF"}, "--transparency needs six hexadecimal digits RRGGBB, not \"FFF\""},
      {{"--transparency", "GGGGGG"}, "--transparency needs six hexadecimal digits RRGGBB, not \"GGGGGG\""},
      {{"--transparency", "-12345"}, "--transparency needs six hexadecimal digits RRGGBB, not \"-12345\""},
      {{"--transparency", "0xFFFF"}, "--transparency needs six hexadecimal digits RRGGBB, not \"0xFFFF\""},
      {{"--resampling", "Cubic"},
       "--resampling knows average, near, bilinear, cubic, cubicspline, lanczos, antialias, not \"Cubic\""},
      {{"--tiles", "jpg"}, "--tiles knows png, auto, webp, not \"jpg\""},
      {{"--overwrite", "maybe"}, "--overwrite needs yes or no, not \"maybe\""},
      {{"--title", "a\"b"}, "--title must not contain any of \\ / : * ? \" < > |"},
      {{"--title", "a\nb"}, "--title must not contain any of \\ / : * ? \" < > |"},
      {{"--google-key", "a b"}, "--google-key must not contain blanks or quotes"},
      {{"--url", ""}, "--url needs an address"},
      {{"--url", "http://h/a b"}, "--url must not contain blanks, quotes, angle brackets or &"},
      {{"--url", "http://h/?a=1&b=2"}, "--url must not contain blanks, quotes, angle brackets or &"},
  };
  for (const Case& each : cases) {
    BatchArguments arguments;
    EXPECT_EQ(ParseBatchArguments(each.words, arguments), each.problem);
  }
}

TEST(BatchArguments, NeedNothingElseForHelpAndVersion) {
  BatchArguments arguments;
  EXPECT_EQ(ParseBatchArguments({"--help"}, arguments), "");
  EXPECT_TRUE(arguments.help);
  EXPECT_EQ(ParseBatchArguments({"--version"}, arguments), "");
  EXPECT_TRUE(arguments.version);
}

TEST(BatchHelp, NamesEveryOptionAndMode) {
  const std::string help = BatchHelp();
  for (const char* option : {"--target", "--title", "--url", "--google-key", "--transparency", "--resampling",
                             "--tiles", "--overwrite", "--quiet", "--help", "--version"}) {
    EXPECT_NE(help.find(option), std::string::npos) << option;
  }
  for (const std::string& mode : ResamplingModes()) EXPECT_NE(help.find(mode), std::string::npos) << mode;
}

}  // namespace
