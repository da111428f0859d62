#include "zarn-ingest/run/ServiceDirectories.h"

#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>

#include <cerrno>
#include <stdexcept>

#include "shared/files/Durable.h"
#include "shared/files/SystemError.h"
#include "zarn-ingest/run/Moving.h"

namespace zarn::ingest {

namespace {

dev_t fileSystemOf(const std::string& directory) {
    struct stat status = {};
    if (::stat(directory.c_str(), &status) != 0) throwSystemError("directory " + directory);
    return status.st_dev;
}

/// A move within a file system is one step; between two it could leave half a file.
void checkSameFileSystem(const std::string& from, const std::string& to) {
    if (fileSystemOf(from) != fileSystemOf(to))
        throw std::runtime_error("the directories " + from + " and " + to +
                                 " must be on one file system");
}

/// Creates a directory for sources, if it is missing, and checks that they can be moved there.
void prepareTarget(const std::string& incoming, const std::string& target) {
    FileIO(target, true, true).checkCreateDir(target);
    checkSameFileSystem(incoming, target);
    if (::access(target.c_str(), W_OK | X_OK) != 0) throwSystemError("directory " + target);
}

}  // namespace

std::string incomingDirectory(const Settings& settings) {
    return FileIO(settings.pattern, true, false).getPath();
}

std::vector<std::string> prepareDirectories(const Settings& settings) {
    const std::string incoming = incomingDirectory(settings);
    std::vector<std::string> directories = {incoming, settings.outputDir};
    for (const std::string& target : {settings.doneDir, settings.failedDir}) {
        if (target.empty()) continue;
        prepareTarget(incoming, target);
        directories.push_back(target);
    }
    if (!settings.journalDir.empty()) {
        FileIO(settings.journalDir, true, true).checkCreateDir(settings.journalDir);
        directories.push_back(settings.journalDir);
    }
    return directories;
}

std::set<std::filesystem::path> failedFiles(const std::string& directory) {
    std::set<std::filesystem::path> files;
    std::error_code ignored;  // a link that leads nowhere is no directory
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (!entry.is_directory(ignored) && !isReason(entry.path().filename()))
            files.insert(entry.path());
    }
    return files;
}

void putBackFailed(const Settings& settings, Reporter& reporter) {
    const std::string pattern = FileIO(settings.pattern, true, false).getBaseName();
    const std::string incoming = incomingDirectory(settings) + "/";
    for (const std::filesystem::path& file : failedFiles(settings.failedDir)) {
        const std::string name = withoutNumber(file.filename());
        if (::fnmatch(pattern.c_str(), name.c_str(), FNM_PERIOD) != 0) continue;
        const std::string target = incoming + name;
        if (renameToNew(file, target)) {
            ::unlink((file.parent_path() / reasonName(file.filename())).c_str());
        } else {
            reporter.error(problemText(
                file, 0, "cannot be put back to " + target + ": " + systemReason(errno)));
        }
    }
    syncToDisk(incoming);
    syncToDisk(settings.failedDir);
}

}  // namespace zarn::ingest
