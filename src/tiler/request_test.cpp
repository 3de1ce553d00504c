#include "tiler/request.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tiler/tiler_error.h"

namespace tiler {
namespace {

using Words = std::vector<std::string>;

std::string Refusal(const Words& arguments) {
  try {
    ParseRequest(arguments);
  } catch (const TilerError& error) {
    return error.what();
  }
  return "";
}

TEST(Request, HasWhatIsGiven) {
  const Request request = ParseRequest({"-a", "197121", "-s", "EPSG:32633", "-p", "mercator", "-t", "-x é",
                                        "-k", "-u", "../", "-gKEY", "/wiesen é/a.tif", "/maps/a/"});
  EXPECT_EQ(request.transparent, (Colour{1, 2, 3}));
  EXPECT_EQ(request.srs, "EPSG:32633");
  EXPECT_EQ(request.title, "-x é");
  EXPECT_TRUE(request.kml);
  EXPECT_EQ(request.url, "../");
  EXPECT_EQ(request.key, "KEY");
  EXPECT_EQ(request.threads, 0);
#ifndef _WIN32
  EXPECT_EQ(request.input, "/wiesen é/a.tif");
  EXPECT_EQ(request.output, "/maps/a");
#endif
}

TEST(Request, NeedsNothingButTheImageAndTheFolder) {
  const Request request = ParseRequest({"bild é.tif", "maps"});
  EXPECT_FALSE(request.transparent);
  EXPECT_FALSE(request.kml);
  EXPECT_EQ(request.title, "bild é.tif");
  EXPECT_EQ(request.srs + request.url + request.key, "");
  const std::string here = std::filesystem::current_path().string();
  EXPECT_TRUE(request.input.starts_with(here) && request.output.starts_with(here));
}

TEST(Request, UnpacksColours) {
  const struct {
    const char* text;
    Colour colour;
  } cases[] = {{"0", {0, 0, 0}},          {"255", {255, 0, 0}},          {"65280", {0, 255, 0}},
               {"16711680", {0, 0, 255}}, {"16777215", {255, 255, 255}}, {"000255", {255, 0, 0}}};
  for (const auto& each : cases)
    EXPECT_EQ(ParseRequest({"-a", each.text, "i", "o"}).transparent, each.colour);
}

TEST(Request, ChoosesHowPixelsAreMade) {
  EXPECT_EQ(ParseRequest({"i", "o"}).sampling, Sampling::kSharp);
  EXPECT_EQ(ParseRequest({"i", "o"}).resampling, std::nullopt);
  EXPECT_EQ(ParseRequest({"--sampling=gdal2tiles", "i", "o"}).sampling, Sampling::kGdal2tiles);
  EXPECT_EQ(ParseRequest({"--sampling", "sharp", "i", "o"}).sampling, Sampling::kSharp);
  const std::pair<const char*, Resampling> cases[] = {
      {"average", Resampling::kAverage},   {"near", Resampling::kNearest},
      {"bilinear", Resampling::kBilinear}, {"cubic", Resampling::kCubic},
      {"lanczos", Resampling::kLanczos},   {"cubicspline", Resampling::kCubicSpline},
      {"antialias", Resampling::kLanczos}};
  for (const auto& [name, resampling] : cases) {
    EXPECT_EQ(ParseRequest({"--resampling", name, "i", "o"}).resampling, resampling) << name;
  }
  EXPECT_EQ(Refusal({"--sampling=blurred", "i", "o"}), "the sampling 'blurred' is none of sharp, gdal2tiles");
  EXPECT_EQ(Refusal({"--resampling=", "i", "o"}),
            "the resampling '' is none of average, near, bilinear, cubic, cubicspline, lanczos, antialias");
}

TEST(ParseRequest, KnowsWhatTilesAreToBe) {
  EXPECT_EQ(ParseRequest({"i", "o"}).tiles, std::nullopt);
  EXPECT_EQ(ParseRequest({"--tiles=png", "i", "o"}).tiles, TileFormat::kPng);
  EXPECT_EQ(ParseRequest({"--tiles", "auto", "i", "o"}).tiles, TileFormat::kAuto);
  EXPECT_EQ(ParseRequest({"--tiles=webp", "i", "o"}).tiles, TileFormat::kWebp);
  EXPECT_EQ(Refusal({"--tiles=jpg", "i", "o"}), "the kind of tiles 'jpg' is none of png, auto, webp");
  EXPECT_EQ(ParseRequest({"--tiles=png", "--sampling=gdal2tiles", "i", "o"}).tiles, TileFormat::kPng);
  EXPECT_EQ(Refusal({"--tiles=auto", "--sampling=gdal2tiles", "i", "o"}),
            "tiles as gdal2tiles makes them are PNG alone");
}

TEST(Request, RefusesWhatIsNoColour) {
  for (const std::string text : {"16777216", "white", "-1", "+1", "", " 1", "1.0", "99999999999999999999"}) {
    EXPECT_EQ(Refusal({"-a", text, "i", "o"}),
              "the transparent colour '" + text + "' is not a number from 0 to 16777215");
  }
  EXPECT_EQ(Refusal({"-a", "it's", "i", "o"}),
            "the transparent colour \"it's\" is not a number from 0 to 16777215");
}

TEST(Request, RefusesOtherCommandLines) {
  const std::string notUnderstood = "the command line was not understood: ";
  const std::string mustEnd = "the command line must end with the image and the output folder";
  EXPECT_EQ(Refusal({"-x", "i", "o"}), notUnderstood + "option -x not recognized");
  EXPECT_EQ(Refusal({"i", "o", "-k"}), mustEnd) << "nothing is an option behind the first that is none";
  EXPECT_EQ(Refusal({"-kx", "i", "o"}), notUnderstood + "option -x not recognized");
  EXPECT_EQ(Refusal({"-t"}), notUnderstood + "option -t requires argument");
  EXPECT_EQ(Refusal({"--title=x", "i", "o"}), notUnderstood + "option --title not recognized");
  EXPECT_EQ(Refusal({"--threads"}), notUnderstood + "option --threads requires argument");
  EXPECT_EQ(Refusal({}), mustEnd);
  EXPECT_EQ(Refusal({"i"}), mustEnd);
  EXPECT_EQ(Refusal({"i", ""}), mustEnd);
  EXPECT_EQ(Refusal({"", "o"}), mustEnd);
  EXPECT_EQ(Refusal({"i", "o", "p"}), mustEnd);
  EXPECT_EQ(Refusal({"-p", "geodetic", "i", "o"}), "only tiles of the profile mercator can be made");
}

TEST(Request, TakesTheLastOfTwo) {
  EXPECT_EQ(ParseRequest({"-t", "a", "-tb", "i", "o"}).title, "b");
}

TEST(Request, EndsItsOptionsAtTwoDashes) {
  const Request request = ParseRequest({"-k", "--", "-i", "-o"});
  EXPECT_TRUE(request.kml);
  EXPECT_TRUE(request.input.ends_with("-i") && request.output.ends_with("-o"));
}

TEST(Request, TakesANumberOfThreads) {
  EXPECT_EQ(ParseRequest({"--threads=3", "i", "o"}).threads, 3);
  EXPECT_EQ(ParseRequest({"--threads", "256", "i", "o"}).threads, 256);
  for (const std::string text : {"0", "257", "two", "-1", ""}) {
    EXPECT_EQ(Refusal({"--threads=" + text, "i", "o"}),
              "the number of threads '" + text + "' is not a number from 1 to 256");
  }
}

TEST(Request, TakesAnAmountOfMemory) {
  EXPECT_EQ(ParseRequest({"i", "o"}).memory, 0);
  EXPECT_EQ(ParseRequest({"--memory=128", "i", "o"}).memory, 128);
  EXPECT_EQ(ParseRequest({"--memory", "1000000", "i", "o"}).memory, 1000000);
  for (const std::string text : {"127", "1000001", "1G", ""}) {
    EXPECT_EQ(Refusal({"--memory=" + text, "i", "o"}),
              "the memory '" + text + "' is not a number of megabytes from 128 to 1000000");
  }
}

TEST(Request, TakesAShareOfTheTiles) {
  EXPECT_FALSE(ParseRequest({"i", "o"}).share);
  const Request request = ParseRequest({"--shard=2/7", "i", "o"});
  EXPECT_EQ(request.share->index, 2);
  EXPECT_EQ(request.share->count, 7);
  EXPECT_EQ(ParseRequest({"--shard", "0/1", "i", "o"}).share->count, 1);
  EXPECT_EQ(ParseRequest({"--shard=9999/10000", "i", "o"}).share->index, 9999);
  for (const std::string text :
       {"7/7", "0/0", "1/10001", "-1/7", "1", "1/", "/7", "", "a/b", "1/7/9", "1 /7"}) {
    EXPECT_EQ(Refusal({"--shard=" + text, "i", "o"}),
              "the share '" + text + "' is not I/N, with N from 1 to 10000 and I from 0 to N - 1");
  }
}

TEST(Request, MergesOrMakesAShare) {
  EXPECT_FALSE(ParseRequest({"i", "o"}).merge);
  EXPECT_TRUE(ParseRequest({"--merge", "i", "o"}).merge);
  EXPECT_EQ(Refusal({"--merge=2", "i", "o"}),
            "the command line was not understood: option --merge must not have an argument");
  EXPECT_EQ(Refusal({"--merge", "--shard=0/2", "i", "o"}),
            "a run makes either a share or what is left when all shares are there");
}

TEST(Arguments, AreShownWithoutTheKey) {
  const struct {
    Words arguments;
    const char* shown;
  } cases[] = {{{}, "[]"},
               {{"-g", "key", "in", "out"}, "['-g', '***', 'in', 'out']"},
               {{"-gkey", "in"}, "['-g***', 'in']"},
               {{"-kgkey", "in"}, "['-kg***', 'in']"},
               {{"-kg", "key", "in"}, "['-kg', '***', 'in']"},
               {{"-k", "in"}, "['-k', 'in']"},
               {{"-t", "it's"}, "['-t', \"it's\"]"},
               {{"-g", "-g", "in"}, "['-g', '***', 'in']"}};
  for (const auto& each : cases) EXPECT_EQ(ArgumentsWithoutKey(each.arguments), each.shown);
}

TEST(Information, IsGivenOnRequestAlone) {
  EXPECT_EQ(Information({"--version"})->rfind("mosaicon-tiler ", 0), 0U);
  EXPECT_NE(Information({"--version"})->find_first_of("0123456789"), std::string::npos);
  const std::string help = *Information({"--help"});
  for (const char* option : {"-s", "-a", "-t", "-k", "-u", "-g", "-p", "--threads", "--memory", "--shard",
                             "--merge", "--version", "--help"}) {
    EXPECT_NE(help.find(std::string("\n  ") + option), std::string::npos) << option;
  }
  EXPECT_EQ(Information({}), std::nullopt);
  EXPECT_EQ(Information({"--help", "in", "out"}), std::nullopt);
  EXPECT_EQ(Information({"-t", "--help"}), std::nullopt);
}

}  // namespace
}  // namespace tiler
