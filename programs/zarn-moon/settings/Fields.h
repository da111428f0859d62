/// Lines of a table as text.
#ifndef ZARN_MOON_FIELDS_H
#define ZARN_MOON_FIELDS_H

#include <string>
#include <vector>

namespace zarn::moon {

/// A text without the blanks, tabs and line ends around it.
std::string trimmed(const std::string& text);

/// The fields of a line, without the blanks around them. A field with the separator or with quotes
/// in it stands in double quotes, its quotes doubled.
///
/// @throw std::invalid_argument  saying what is wrong with a quoted field
std::vector<std::string> fieldsOf(const std::string& line, char separator);

}  // namespace zarn::moon

#endif  // ZARN_MOON_FIELDS_H
