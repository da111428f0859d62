/// Tables of numbers from an independent source. A row has a name, what goes in, an equals sign,
/// and what must come out: numbers, each with its tolerance. A # begins a comment.
#ifndef TESTS_SUPPORT_NUMBERTABLE_H
#define TESTS_SUPPORT_NUMBERTABLE_H

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

inline std::vector<double> numbersIn(const std::string& text) {
    std::istringstream words(text);
    std::vector<double> numbers;
    for (std::string word; words >> word;) numbers.push_back(std::stod(word));
    return numbers;
}

/// Expects that `call`, given a row's name and numbers, gives at least as many numbers as the row
/// has, and as they are. How many rows there are of each name.
template <typename Call>
std::map<std::string, int> expectTable(const std::string& fileName, Call call) {
    std::ifstream table(fileName);
    std::map<std::string, int> rows;
    for (std::string row; std::getline(table, row);) {
        if (row[0] == '#') continue;
        const std::size_t blank = row.find(' ');
        const std::size_t equals = row.find('=');
        const std::string name = row.substr(0, blank);
        ++rows[name];
        const auto values = call(name, numbersIn(row.substr(blank, equals - blank)));
        const std::vector<double> expected = numbersIn(row.substr(equals + 1));  // and tolerances
        for (std::size_t i = 0; 2 * i < expected.size(); ++i) {
            const double value = expected[2 * i];
            if (std::isnan(value) ? !std::isnan(values.at(i))
                                  : !(std::fabs(values.at(i) - value) <= expected.at(2 * i + 1)))
                ADD_FAILURE() << row << "\nnumber " << i << " is " << values.at(i);
        }
    }
    return rows;
}

#endif  // TESTS_SUPPORT_NUMBERTABLE_H
