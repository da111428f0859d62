/// Text for messages.
#ifndef ZARN_PROGRAMS_PRINTABLE_H
#define ZARN_PROGRAMS_PRINTABLE_H

#include <string>

/// `text` on one line: control characters, backslashes and what is no UTF-8 as \xHH, so that a name
/// or a card can neither break a line nor be taken for another.
std::string printable(const std::string& text);

#endif  // ZARN_PROGRAMS_PRINTABLE_H
