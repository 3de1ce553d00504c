// The words of a command line: options, with or without a value, and the rest. Portable.
#ifndef MOSAICON_BATCH_OPTION_WORDS_H_
#define MOSAICON_BATCH_OPTION_WORDS_H_

#include <functional>
#include <map>
#include <string>
#include <vector>

// Takes the value of an option; returns what is wrong with it, or an empty text.
using ValueReader = std::function<std::string(const std::string& value)>;

// An option takes its value from the next word or after "="; "--" ends the options. What is no option goes to
// rest. Returns an empty text, or one sentence that says what is wrong; emptyWord is the one for a word
// without letters.
std::string ReadOptionWords(const std::vector<std::string>& words,
                            const std::map<std::string, ValueReader>& readers,
                            const std::map<std::string, bool*>& switches, const std::string& emptyWord,
                            std::vector<std::string>& rest);

#endif  // MOSAICON_BATCH_OPTION_WORDS_H_
