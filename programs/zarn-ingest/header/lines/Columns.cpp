#include "zarn-ingest/header/lines/Columns.h"

#include <algorithm>
#include <cctype>

namespace zarn::ingest {

std::string withoutTrailing(const std::string& text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);  // npos + 1 is 0: nothing
}

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : withoutTrailing(text.substr(begin));
}

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

bool isBlank(const std::string& text) { return text.find_first_not_of(' ') == std::string::npos; }

std::string padded(std::string text, std::size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

}  // namespace zarn::ingest
