#include "Inputs.h"

#include <unistd.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/ZarnSysEx.h>

#include <algorithm>
#include <sstream>
#include <system_error>

#include "Reading.h"

namespace {

void addArgument(const std::string& argument, std::vector<Input>& inputs) {
    FileIO file(argument, true, false);
    if (file.exists()) {
        inputs.push_back({argument, ""});
        return;
    }
    std::vector<std::string> matches;
    file.match(matches, 0);
    std::sort(matches.begin(), matches.end());
    for (const std::string& match : matches) inputs.push_back({match, ""});
    if (matches.empty())
        inputs.push_back({argument, "no such file, and no file matches it as a pattern"});
}

void addNames(const std::string& list, char separator, std::vector<Input>& inputs) {
    std::istringstream names(list);
    for (std::string name; std::getline(names, name, separator);) {
        if (name.empty()) continue;
        const bool cut = name.find('\0') != std::string::npos;
        inputs.push_back({name, cut ? "the name holds a NUL byte: is --null missing?" : ""});
    }
}

std::string readStandardInput(StopSignals& signals) {
    std::string list;
    while (signals.waitFor(STDIN_FILENO) && readChunk(STDIN_FILENO, list)) {
    }
    return list;
}

/// Adds the names that `read` gives, or what kept it from reading.
template <typename Read>
void addList(const std::string& listName, char separator, Read read, std::vector<Input>& inputs) {
    try {
        addNames(read(), separator, inputs);
    } catch (const std::system_error& error) {
        inputs.push_back({listName, "the list cannot be read: " + error.code().message()});
    }
}

}  // namespace

std::vector<Input> collectInputs(const IngestOptions& options, StopSignals& signals) {
    const char separator = options.nulSeparated ? '\0' : '\n';
    std::vector<Input> inputs;
    for (const std::string& argument : options.arguments) addArgument(argument, inputs);
    for (const std::string& list : options.lists)
        addList(
            list, separator, [&] { return readFile(list); }, inputs);
    if (options.standardInput)
        addList(
            "standard input", separator, [&] { return readStandardInput(signals); }, inputs);
    return inputs;
}
