/// The properties file of zarn-ingest.
#ifndef ZARN_INGEST_PROPERTIES_H
#define ZARN_INGEST_PROPERTIES_H

#include <string>

#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// Reads the settings of a properties file. Warns on standard error of every unknown key.
///
/// @throw UsageError  naming file and line of a line that is not a property, or file, section, key
///                    and value of a wrong value
Settings readProperties(const std::string& fileName);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_PROPERTIES_H
