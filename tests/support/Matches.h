/// Extended regular expressions of POSIX: gcc 12 warns of its own <regex> under the sanitizers.
#ifndef ZARNSYS_TESTS_SUPPORT_MATCHES_H
#define ZARNSYS_TESTS_SUPPORT_MATCHES_H

#include <regex.h>

#include <array>
#include <string>
#include <vector>

/// The text and its groups when a pattern matches all of it; else nothing.
inline std::vector<std::string> matched(const std::string& text, const std::string& pattern) {
    regex_t compiled = {};
    std::array<regmatch_t, 8> found = {};
    std::vector<std::string> groups;
    if (::regcomp(&compiled, ("^" + pattern + "$").c_str(), REG_EXTENDED) != 0) return groups;
    if (::regexec(&compiled, text.c_str(), found.size(), found.data(), 0) == 0) {
        for (std::size_t i = 0; i <= compiled.re_nsub && i < found.size(); ++i) {
            const auto begin = static_cast<std::size_t>(found.at(i).rm_so);
            groups.push_back(
                text.substr(begin, static_cast<std::size_t>(found.at(i).rm_eo) - begin));
        }
    }
    ::regfree(&compiled);
    return groups;
}

#endif  // ZARNSYS_TESTS_SUPPORT_MATCHES_H
