#include "zarn-ingest/run/Inputs.h"

#include <sys/stat.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/ZarnSysEx.h>

#include <cerrno>
#include <system_error>

#include "shared/cli/TextStreams.h"
#include "shared/files/Pattern.h"
#include "shared/files/Reading.h"
#include "shared/files/SystemError.h"

namespace zarn::ingest {

namespace {

/// Why an argument gives no file.
std::string reasonForNothing(const std::string& argument) {
    struct stat status = {};
    if (::stat(argument.c_str(), &status) == -1 && errno != ENOENT)
        return "cannot be read: " + systemReason(errno);
    return "no such file, and no file matches it as a pattern";
}

/// Adds the matches of a pattern, and the directories that cannot be listed.
void addMatches(const std::string& pattern, bool mayBeMissing, std::vector<Input>& inputs) {
    const auto [names, unlisted] = matchesOf(pattern);
    for (const std::string& name : names) inputs.push_back({name, ""});
    for (const auto& [directory, error] : unlisted) {
        if (mayBeMissing && error == std::errc::no_such_file_or_directory) continue;
        inputs.push_back({directory, "the directory cannot be listed: " + error.message(), true});
    }
}

/// Adds the file of this name, or the matches of the pattern.
void addArgument(const std::string& argument, std::vector<Input>& inputs) {
    if (FileIO(argument, true, false).exists()) {
        inputs.push_back({argument, ""});
        return;
    }
    const std::size_t before = inputs.size();
    addMatches(argument, true, inputs);
    if (inputs.size() == before) inputs.push_back({argument, reasonForNothing(argument)});
}

/// Adds each name of a list that was read.
void addNames(const std::string& list, char separator, std::vector<Input>& inputs) {
    TextReader names(list);
    for (std::string name; std::getline(names, name, separator);) {
        if (name.empty()) continue;
        const bool cut = name.find('\0') != std::string::npos;
        inputs.push_back({name, cut ? "the name holds a NUL byte: is --null missing?" : ""});
    }
}

/// The whole text, or the part of it that came before a signal.
std::string readList(int fd, const StopSignals& signals) {
    std::string list;
    while (signals.waitFor(fd) && readChunk(fd, list)) {
    }
    return list;
}

/// Adds the names of a list, or an input that says why the list cannot be read.
template <typename Read>
void addList(const std::string& listName, char separator, Read read, std::vector<Input>& inputs) {
    try {
        addNames(read(), separator, inputs);
    } catch (const std::system_error& error) {
        inputs.push_back({listName, "the list cannot be read: " + error.code().message(), true});
    }
}

}  // namespace

std::vector<Input> collectInputs(const Settings& settings, const StopSignals& signals) {
    const char separator = settings.nulSeparated ? '\0' : '\n';
    std::vector<Input> inputs;
    // Files need not have arrived yet, but their directory must be there.
    if (!settings.isNamed()) addMatches(settings.pattern, false, inputs);
    for (const std::string& argument : settings.arguments) addArgument(argument, inputs);
    for (const std::string& list : settings.lists) {
        const auto read = [&] { return readList(openForReading(list).get(), signals); };
        addList(list, separator, read, inputs);
    }
    if (settings.standardInput) {
        const auto read = [&] { return readList(STDIN_FILENO, signals); };
        addList("standard input", separator, read, inputs);
    }
    return inputs;
}

}  // namespace zarn::ingest
