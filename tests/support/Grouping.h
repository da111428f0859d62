/// A locale that groups digits, as many countries' do: for texts that must not depend on it.
#ifndef TESTS_SUPPORT_GROUPING_H
#define TESTS_SUPPORT_GROUPING_H

#include <locale>
#include <string>

/// The program's locale, while it lives.
class Grouping {
public:
    ~Grouping() { std::locale::global(before_); }

private:
    struct Digits : std::numpunct<char> {
        char do_thousands_sep() const override { return ','; }
        std::string do_grouping() const override { return "\3"; }
    };

    std::locale before_ = std::locale::global(std::locale(std::locale::classic(), new Digits));
};

#endif  // TESTS_SUPPORT_GROUPING_H
