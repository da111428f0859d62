/// Text for messages.
#ifndef ZARN_PROGRAMS_PRINTABLE_H
#define ZARN_PROGRAMS_PRINTABLE_H

#include <string>

namespace zarn {

/// `text` on one line. Control characters, backslashes and bytes that are not UTF-8 become \xHH: a
/// name or a card can neither break the line nor look like another one.
std::string printable(const std::string& text);

/// The text that `printable` made a line of.
std::string unprintable(const std::string& line);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_PRINTABLE_H
