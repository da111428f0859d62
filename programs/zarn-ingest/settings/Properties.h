/// The properties file of zarn-ingest.
#ifndef ZARN_INGEST_PROPERTIES_H
#define ZARN_INGEST_PROPERTIES_H

#include <string>

#include "zarn-ingest/settings/Settings.h"

/// The settings that a properties file makes; an unknown key is a warning on standard error.
///
/// @throw UsageError  naming file and line of what is no property, or file, section, key and value
///                    of a value that is wrong
Settings readProperties(const std::string& fileName);

#endif  // ZARN_INGEST_PROPERTIES_H
