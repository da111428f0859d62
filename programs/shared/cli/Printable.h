/// Text for messages.
#ifndef ZARN_PROGRAMS_PRINTABLE_H
#define ZARN_PROGRAMS_PRINTABLE_H

#include <string>

namespace zarn {

/// `text` on one line. Control characters, backslashes and bytes that are not UTF-8 become \xHH: a
/// name or a card can neither break the line nor look like another one.
std::string printable(const std::string& text);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_PRINTABLE_H
