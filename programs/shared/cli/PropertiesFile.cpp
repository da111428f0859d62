#include "shared/cli/PropertiesFile.h"

#include <ace/Configuration_Import_Export.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "shared/cli/BeginsWith.h"
#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"
#include "shared/cli/Value.h"
#include "shared/files/Reading.h"
#include "shared/files/SystemError.h"

namespace zarn {

namespace {

constexpr std::size_t MAX_LINE = 4095;  // what ACE reads at once [characters]
constexpr off_t MAX_BYTES = 65536;      // of a file: ACE's time grows with the square of its keys

/// Why ACE's importer cannot read a line, whose first character that is not blank is at `begin`;
/// empty: it can.
std::string problemOf(const std::string& line, std::size_t begin, bool inSection) {
    if (line.find('\0') != std::string::npos)
        return "a NUL byte, after which nothing would be read";
    if (line.size() > MAX_LINE) return "more than 4095 characters";
    if (begin == std::string::npos || line[begin] == '#' || line[begin] == ';') return "";
    const bool opens = line[begin] == '[';
    if (opens && line.find(']') == std::string::npos) return "a bracket is not closed";
    if (opens && line.compare(begin, 2, "[]") == 0) return "a section without name";
    if (!opens && line.find('=') == std::string::npos) return "no '=' and no [section]";
    if (!opens && !inSection) return "a key before the first [section]";
    return "";
}

/// Makes sure that ACE's importer, which gives up without a message, can read every line.
void checkLines(const std::string& fileName, const std::string& text) {
    TextReader lines(text);
    bool inSection = false;
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t begin = line.find_first_not_of(" \t\r");
        const std::string problem = problemOf(line, begin, inSection);
        if (!problem.empty())
            throw UsageError(printable(fileName) + ":" + std::to_string(++number) + ": " + problem);
        ++number;
        inSection = inSection || (begin != std::string::npos && line[begin] == '[');
    }
}

/// Makes sure that the file can be read to its end: no pipe, no device, nothing endless.
void checkFile(const std::string& fileName) {
    struct stat status = {};
    const auto refuse = [&fileName](const std::string& problem) {
        throw UsageError(printable(fileName) + ": " + problem);
    };
    if (::stat(fileName.c_str(), &status) != 0) refuse("cannot be read: " + systemReason(errno));
    if (!S_ISREG(status.st_mode)) refuse("is not a regular file");
    if (status.st_size > MAX_BYTES)
        refuse("is larger than 64 KiB, too large for a properties file");
}

/// Adds the keys of a section, and of those within it, under their names from the root.
void addKeys(ACE_Configuration_Heap& heap, const ACE_Configuration_Section_Key& section,
             const std::string& path, PropertyKeys& keys) {
    ACE_TString name;
    ACE_Configuration::VALUETYPE type = ACE_Configuration::STRING;
    for (int i = 0; heap.enumerate_values(section, i, name, type) == 0; ++i)
        keys.emplace(path, name.c_str());
    for (int i = 0; heap.enumerate_sections(section, i, name) == 0; ++i) {
        ACE_Configuration_Section_Key inner;
        heap.open_section(section, name.c_str(), false, inner);
        addKeys(heap, inner, path + (path.empty() ? "" : "/") + name.c_str(), keys);
    }
}

std::string contentOf(const std::string& fileName) {
    try {
        return readFile(fileName);
    } catch (const std::system_error& error) {
        throw UsageError(printable(fileName) + ": cannot be read: " + error.code().message());
    }
}

std::string withoutBlanks(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string::npos) return "";
    return text.substr(begin, text.find_last_not_of(" \t\r") + 1 - begin);
}

}  // namespace

void checkPropertiesFile(const std::string& fileName) {
    checkFile(fileName);
    checkLines(fileName, contentOf(fileName));
}

PropertyKeys keysIn(const std::string& fileName) {
    ACE_Configuration_Heap heap;
    heap.open();
    if (ACE_Ini_ImpExp(heap).import_config(fileName.c_str()) != 0)
        throw UsageError(printable(fileName) + ": not a properties file throughout");
    PropertyKeys keys;
    addKeys(heap, heap.root_section(), "", keys);
    return keys;
}

std::size_t lineOf(const std::string& fileName, const std::string& section,
                   const std::string& key) {
    TextReader lines(contentOf(fileName));
    std::size_t number = 0;
    std::size_t found = 0;
    std::string current;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        line = withoutBlanks(line);
        if (beginsWith(line, "[")) current = line.substr(1, line.find(']') - 1);
        const bool isKey = withoutBlanks(line.substr(0, line.find('='))) == key;
        if (current == section && isKey) found = number;
    }
    return found;
}

UsageError wrongProperty(const std::string& place, const std::string& section,
                         const std::string& key, const std::invalid_argument& error,
                         const std::string& value) {
    const bool namesForm = dynamic_cast<const WrongValue*>(&error) != nullptr;
    return UsageError(printable(place + ": [" + section + "] " + key + " = " + value) +
                      (namesForm ? ": must be " : ": ") + error.what());
}

}  // namespace zarn
