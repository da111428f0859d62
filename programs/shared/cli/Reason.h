/// The text of an error, whatever threw it.
#ifndef ZARN_PROGRAMS_REASON_H
#define ZARN_PROGRAMS_REASON_H

#include <exception>
#include <string>

namespace zarn {

/// What an exception says. The library's own exception keeps its text where `std::exception::what`
/// does not find it.
std::string reasonOf(const std::exception& error);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_REASON_H
