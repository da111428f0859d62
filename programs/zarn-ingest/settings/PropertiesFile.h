/// The syntax of a properties file. ACE skips without a message what it cannot read.
#ifndef ZARN_INGEST_PROPERTIESFILE_H
#define ZARN_INGEST_PROPERTIESFILE_H

#include <set>
#include <string>
#include <utility>

namespace zarn::ingest {

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

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_PROPERTIESFILE_H
