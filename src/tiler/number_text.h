// Numbers as Python shows them, in which the texts of a pyramid are to agree to the last letter.
#ifndef MOSAICON_TILER_NUMBER_TEXT_H_
#define MOSAICON_TILER_NUMBER_TEXT_H_

#include <string>
#include <vector>

namespace tiler {

// Like "%.*f": rounded to so many decimals, never with an exponent.
std::string WithDecimals(double value, int decimals);

// Like repr: the shortest decimal fraction that means this very number.
std::string ShortestText(double value);

// All of them, with this text between any two.
std::string Joined(const std::vector<int>& numbers, const char* between);

}  // namespace tiler

#endif  // MOSAICON_TILER_NUMBER_TEXT_H_
