/// Negative numbers on the command line.
#ifndef ZARN_MOON_NEGATIVENUMBERS_H
#define ZARN_MOON_NEGATIVENUMBERS_H

#include <string>
#include <vector>

namespace zarn::moon {

/// The arguments, with a blank before each negative value of one option: the parser takes what
/// begins with a minus for another option. The option's reader takes the blank away.
class NegativeNumbers {
public:
    /// @param option  long name, with its two dashes
    NegativeNumbers(const std::vector<const char*>& arguments, const std::string& option);

    /// The arguments for the parser. They live as long as this object.
    std::vector<const char*> arguments() const;

private:
    std::vector<std::string> arguments_;
};

}  // namespace zarn::moon

#endif  // ZARN_MOON_NEGATIVENUMBERS_H
