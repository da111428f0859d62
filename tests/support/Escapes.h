/// Texts of test data that no line of a file can hold as they are.
#ifndef TESTS_SUPPORT_ESCAPES_H
#define TESTS_SUPPORT_ESCAPES_H

#include <cstddef>
#include <string>

/// What is meant by a text: \n is the end of a line, \xHH a byte, and {9} makes nine of the
/// character before it.
inline std::string unescaped(const std::string& written) {
    std::string text;
    for (std::size_t at = 0; at < written.size(); ++at) {
        if (written.compare(at, 2, "\\n") == 0) {
            text += '\n';
            at += 1;
        } else if (written.compare(at, 2, "\\x") == 0) {
            text += static_cast<char>(std::stoi(written.substr(at + 2, 2), nullptr, 16));
            at += 3;
        } else if (written[at] == '{') {
            text.append(std::stoul(written.substr(at + 1)) - 1, text.back());
            at = written.find('}', at);
        } else {
            text += written[at];
        }
    }
    return text;
}

#endif  // TESTS_SUPPORT_ESCAPES_H
