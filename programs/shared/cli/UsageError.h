/// The error that ends a program with exit status 2.
#ifndef ZARN_PROGRAMS_USAGEERROR_H
#define ZARN_PROGRAMS_USAGEERROR_H

#include <stdexcept>

namespace zarn {

/// A command line, or a file that it names, is wrong; the text says what is.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace zarn

#endif  // ZARN_PROGRAMS_USAGEERROR_H
