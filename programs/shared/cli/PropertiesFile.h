/// The syntax of a properties file. ACE skips without a message what it cannot read.
#ifndef ZARN_PROGRAMS_PROPERTIESFILE_H
#define ZARN_PROGRAMS_PROPERTIESFILE_H

#include <cstddef>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

#include "shared/cli/UsageError.h"

namespace zarn {

/// Pairs of section and key; of a section within another the path from the root, with slashes.
using PropertyKeys = std::set<std::pair<std::string, std::string>>;

/// Makes sure that ACE can read the whole file.
///
/// @throw UsageError  naming the file, and the line that ACE could not read
void checkPropertiesFile(const std::string& fileName);

/// Every key of a file, which `WexoProperties` cannot list: the file is read once more for it.
///
/// @throw UsageError  when ACE cannot read the file
PropertyKeys keysIn(const std::string& fileName);

/// The line in which a file gives a key of a section for the last time, counted from 1; 0: it does
/// not.
///
/// @throw UsageError  when the file cannot be read
std::size_t lineOf(const std::string& fileName, const std::string& section, const std::string& key);

/// What is wrong with a property's value.
///
/// @param place  its file, perhaps with a line
/// @param error  a WrongValue, which says what the value must be, or a text that quotes the value
UsageError wrongProperty(const std::string& place, const std::string& section,
                         const std::string& key, const std::invalid_argument& error,
                         const std::string& value);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_PROPERTIESFILE_H
