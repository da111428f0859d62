/// The directories that a service works in.
#ifndef ZARN_INGEST_SERVICEDIRECTORIES_H
#define ZARN_INGEST_SERVICEDIRECTORIES_H

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "zarn-ingest/report/Reporter.h"
#include "zarn-ingest/settings/Settings.h"

namespace zarn::ingest {

/// The directory that the pattern of a service names: where files arrive.
std::string incomingDirectory(const Settings& settings);

/// Creates the directories for sources that are done with, and for the journal, where they are
/// missing, and checks that sources can be moved there.
///
/// @return                every directory that the service must lock
/// @throw std::exception  with the reason when the service could not work in one of them
std::vector<std::string> prepareDirectories(const Settings& settings);

/// The failed files, in the order of their names, without the texts that give their reasons.
///
/// @throw std::exception  when the directory cannot be listed
std::set<std::filesystem::path> failedFiles(const std::string& directory);

/// Moves failed files that the pattern matches back to the incoming directory, and removes their
/// reasons. Of files that had the same name, the first goes back; the others need further runs.
void putBackFailed(const Settings& settings, Reporter& reporter);

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_SERVICEDIRECTORIES_H
