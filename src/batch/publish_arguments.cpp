#include "batch/publish_arguments.h"

#include <algorithm>
#include <charconv>
#include <map>

#include "batch/option_words.h"
#include "mirror/web_check.h"

namespace {

constexpr int kMostConnections = 16;

std::string ReadAddress(const std::string& value, PublishArguments& arguments) {
  const std::string problem = mirror::ParsePublishAddress(value, arguments.address);
  return problem.empty() ? "" : "--publish: " + problem;
}

std::string ReadConnections(const std::string& value, int& count) {
  const char* end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, count);
  if (error == std::errc() && stop == end && count >= 1 && count <= kMostConnections) return "";
  return "--connections needs a number from 1 to " + std::to_string(kMostConnections) + ", not \"" + value +
         "\"";
}

// "500k", "2M"
std::string ReadRate(const std::string& value, std::uint64_t& rate) {
  const char* end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, rate);
  const std::string unit(stop, end);
  const std::map<std::string, std::uint64_t> units = {{"", 1}, {"k", 1000}, {"M", 1000000}};
  const auto found = units.find(unit);
  constexpr std::uint64_t kMost = 1'000'000'000;
  if (error != std::errc() || found == units.end() || rate == 0 || rate > kMost) {
    return "--limit-rate needs bytes a second such as 500k or 2M, not \"" + value + "\"";
  }
  rate *= found->second;
  return "";
}

std::string ReadHostKey(const std::string& value, std::string& key) {
  if (!value.starts_with("SHA256:")) return "--host-key needs a fingerprint that begins with SHA256:";
  key = value;
  return "";
}

std::string ReadWebAddress(const std::string& value, std::string& address) {
  const std::string problem = mirror::FindWebAddressProblem(value);
  address = value;
  return problem.empty() ? "" : "--verify: " + problem;
}

std::map<std::string, ValueReader> ValueReaders(PublishArguments& arguments) {
  const auto text = [](std::string& target) {
    return [&target](const std::string& value) {
      target = value;
      return std::string();
    };
  };
  std::map<std::string, ValueReader> readers = {
      {"--publish", [&](const std::string& value) { return ReadAddress(value, arguments); }},
      {"--connections",
       [&](const std::string& value) { return ReadConnections(value, arguments.connections); }},
      {"--limit-rate", [&](const std::string& value) { return ReadRate(value, arguments.bytesPerSecond); }},
      {"--host-key", [&](const std::string& value) { return ReadHostKey(value, arguments.hostKey); }},
      {"--verify", [&](const std::string& value) { return ReadWebAddress(value, arguments.webAddress); }},
      {"--user", text(arguments.user)},
      {"--netrc", text(arguments.netrcFile)},
      {"--key", text(arguments.keyFile)},
      {"--certificates", text(arguments.certificates)},
  };
  for (auto& [name, reader] : readers) {
    reader = [name = name, inner = reader](const std::string& value) {
      return value.empty() ? name + " needs a value" : inner(value);
    };
  }
  return readers;
}

std::map<std::string, bool*> Switches(PublishArguments& arguments) {
  return {{"--dry-run", &arguments.dryRun},
          {"--delete", &arguments.deleteExtras},
          {"--agent", &arguments.useAgent},
          {"--quiet", &arguments.quiet},
          {"--help", &arguments.help}};
}

}  // namespace

bool IsAboutPublishing(const std::vector<std::string>& words) {
  return std::any_of(words.begin(), words.end(), [](const std::string& word) {
    return word == "--publish" || word.starts_with("--publish=");
  });
}

std::string ParsePublishArguments(const std::vector<std::string>& words, PublishArguments& arguments) {
  const auto readers = ValueReaders(arguments);
  const auto switches = Switches(arguments);
  std::string problem =
      ReadOptionWords(words, readers, switches, "a folder is an empty text", arguments.folders);
  if (!problem.empty()) return problem;
  if (!arguments.help && arguments.folders.empty()) return "no folder to publish is given";
  return "";
}

std::string PublishHelp() {
  return "Usage: mosaicon-batch --publish ADDRESS [OPTION...] FOLDER...\n"
         "\n"
         "Makes the folder of the same name at the address what each FOLDER is: sends what is\n"
         "new or another one, and nothing else. What was there before stays until everything\n"
         "new has arrived. A publication that broke off is taken up by the same command.\n"
         "\n"
         "  ADDRESS                ftp://user@host/folder  encrypted when the server offers it\n"
         "                         ftpes://, ftps://       encrypted, or not at all\n"
         "                         sftp://                 by SSH; ~/ is the user's own folder\n"
         "                         file:///C:/web          a folder, also one that is mounted\n"
         "  --user NAME            where it is not in the address\n"
         "  --netrc FILE           names and passwords of servers\n"
         "  --key FILE, --agent    sftp: a private key, or those of the SSH agent\n"
         "  --host-key SHA256:...  sftp: the fingerprint of a server that is not known yet\n"
         "  --certificates FILE    of servers, in PEM, beside those of the system\n"
         "  --dry-run              say what there is to do, and do nothing\n"
         "  --delete               delete what is only on the server\n"
         "  --verify URL           look at what was published as visitors see it: the web\n"
         "                         address of ADDRESS, such as https://example.org/maps\n"
         "  --connections N        at once, 1 to 16 (default 4)\n"
         "  --limit-rate BYTES     a second, such as 500k or 2M\n"
         "  --quiet                print nothing but problems\n"
         "\n"
         "A password comes from the variable MOSAICON_PUBLISH_PASSWORD, from the file of\n"
         "--netrc, from what the system keeps, or is asked for; that of a key from\n"
         "MOSAICON_PUBLISH_PASSPHRASE.\n"
         "\n"
         "Exit codes: 0 all done, 1 something failed, 2 wrong arguments, 130 aborted.\n";
}
