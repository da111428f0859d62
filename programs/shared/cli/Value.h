/// Values as users write them: on a command line or in a properties file.
#ifndef ZARN_PROGRAMS_VALUE_H
#define ZARN_PROGRAMS_VALUE_H

#include <stdexcept>
#include <string>
#include <vector>

namespace zarn {

/// A value that its setting cannot take. The text says what it must be, as "a whole number": who
/// catches it knows the value and where it came from, and says those.
class WrongValue : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

/// Refuses a text for a problem that the message names after it.
///
/// @throw std::invalid_argument  '"text" problem', always
[[noreturn]] void refuseText(const std::string& text, const std::string& problem);

/// The words of a choice "table|csv|json".
std::vector<std::string> wordsOf(const std::string& choice);

/// The same for a message: "table, csv or json".
std::string alternatives(const std::string& choice);

/// Which word of a choice a text is, counted from 0.
///
/// @throw WrongValue  when it is none
std::size_t indexInChoice(const std::string& text, const std::string& choice);

/// A whole number of decimal digits.
///
/// @throw WrongValue  for anything else, and for a number outside `least` to `most`
unsigned parseWhole(const std::string& text, unsigned least, unsigned most);

/// A flag of a properties file: T or F.
///
/// @throw WrongValue  for anything else
bool parseFlag(const std::string& text);

/// A number as a person would write it: "0.172", "30".
std::string shortest(double number);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_VALUE_H
