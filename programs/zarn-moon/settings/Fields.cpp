#include "zarn-moon/settings/Fields.h"

#include <algorithm>
#include <stdexcept>

namespace zarn::moon {

namespace {

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

}  // namespace

std::string trimmed(const std::string& text) {
    const std::string::size_type begin = text.find_first_not_of(" \t\r");
    if (begin == std::string::npos) return "";
    return text.substr(begin, text.find_last_not_of(" \t\r") + 1 - begin);
}

std::vector<std::string> fieldsOf(const std::string& line, char separator) {
    const char* const blanks = separator == '\t' ? " " : " \t";
    std::vector<std::string> result;
    std::string::size_type at = 0;
    while (at <= line.size()) {
        const std::string::size_type begin = line.find_first_not_of(blanks, at);
        const bool isQuoted = begin != std::string::npos && line[begin] == '"';
        std::string field;
        if (isQuoted) {
            at = begin;
            field = quoted(line, at);
        }
        const std::string::size_type end = std::min(line.find(separator, at), line.size());
        const std::string rest = trimmed(line.substr(at, end - at));
        if (isQuoted && !rest.empty()) throw std::invalid_argument("text after the closing quote");
        result.push_back(field + rest);
        at = end + 1;
    }
    return result;
}

}  // namespace zarn::moon
