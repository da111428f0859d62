#include "zarn-moon/settings/Targets.h"

#include <zarnsys/util/StringUtils.h>

#include <algorithm>
#include <stdexcept>
#include <system_error>

#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"
#include "shared/cli/UsageError.h"
#include "shared/files/Reading.h"

namespace zarn::moon {

namespace {

const std::string BYTE_ORDER_MARK = "\xEF\xBB\xBF";

std::string trimmed(const std::string& text) {
    const std::string::size_type begin = text.find_first_not_of(" \t\r");
    if (begin == std::string::npos) return "";
    return text.substr(begin, text.find_last_not_of(" \t\r") + 1 - begin);
}

/// The text between two quotes, where two quotes in a row stand for one. `at` is the position of
/// the opening quote, and afterwards the one after the closing quote.
std::string quoted(const std::string& line, std::string::size_type& at) {
    std::string text;
    for (++at; at < line.size(); ++at) {
        if (line[at] != '"') {
            text += line[at];
        } else if (line.compare(at, 2, "\"\"") == 0) {
            text += line[at++];
        } else {
            ++at;
            return text;
        }
    }
    throw std::invalid_argument("a quote is not closed");
}

/// The fields of a line, without the blanks around them.
std::vector<std::string> fields(const std::string& line) {
    std::vector<std::string> result;
    std::string::size_type at = 0;
    while (at <= line.size()) {
        const std::string::size_type begin = line.find_first_not_of(" \t", at);
        std::string field;
        if (begin != std::string::npos && line[begin] == '"') {
            at = begin;
            field = quoted(line, at);
        }
        const std::string::size_type comma = std::min(line.find(',', at), line.size());
        const std::string rest = trimmed(line.substr(at, comma - at));
        if (begin != std::string::npos && line[begin] == '"' && !rest.empty())
            throw std::invalid_argument("text after the closing quote");
        result.push_back(field + rest);
        at = comma + 1;
    }
    return result;
}

/// Whether a line names the columns: it begins with "name" and holds no number.
bool isTitle(const std::string& line) {
    return ZarnSys::lower(line).rfind("name,", 0) == 0 &&
           line.find_first_of("0123456789") == std::string::npos;
}

Target targetOf(const std::string& line) {
    constexpr std::size_t FIELDS = 3;
    const std::vector<std::string> parts = fields(line);
    if (parts.size() != FIELDS)
        throw std::invalid_argument("expected name, right ascension, declination");
    if (parts[0].empty()) throw std::invalid_argument("the name is empty");
    return {parts[0], parsePosition(parts[1], parts[2])};
}

std::string contentOf(const std::string& fileName) {
    try {
        return readFileOrPipe(fileName);
    } catch (const std::system_error& error) {
        throw UsageError("option --targets: " + printable(fileName) +
                         " cannot be read: " + error.code().message());
    }
}

}  // namespace

std::vector<Target> readTargets(const std::string& fileName) {
    TextReader lines(contentOf(fileName));
    std::vector<Target> targets;
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        const bool first = number == 1;
        if (first && line.rfind(BYTE_ORDER_MARK, 0) == 0) line.erase(0, BYTE_ORDER_MARK.size());
        line = trimmed(line);
        if (line.empty() || line[0] == '#' || (first && isTitle(line))) continue;
        try {
            targets.push_back(targetOf(line));
        } catch (const std::invalid_argument& error) {
            throw UsageError(printable(fileName) + ":" + std::to_string(number) + ": " +
                             error.what());
        }
    }
    if (targets.empty())
        throw UsageError("option --targets: there is no target in " + printable(fileName));
    return targets;
}

}  // namespace zarn::moon
