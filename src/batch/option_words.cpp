#include "batch/option_words.h"

std::string ReadOptionWords(const std::vector<std::string>& words,
                            const std::map<std::string, ValueReader>& readers,
                            const std::map<std::string, bool*>& switches, const std::string& emptyWord,
                            std::vector<std::string>& rest) {
  bool optionsEnded = false;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "--" && !optionsEnded) {
      optionsEnded = true;
      continue;
    }
    if (word.empty()) return emptyWord;
    if (optionsEnded || word.front() != '-') {
      rest.push_back(word);
      continue;
    }
    if (const auto found = switches.find(word); found != switches.end()) {
      *found->second = true;
      continue;
    }
    const size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const auto reader = readers.find(name);
    if (reader == readers.end()) return "unknown option " + name;
    if (equals == std::string::npos && i + 1 == words.size()) return name + " needs a value";
    const std::string value = equals != std::string::npos ? word.substr(equals + 1) : words[++i];
    std::string problem = reader->second(value);
    if (!problem.empty()) return problem;
  }
  return "";
}
