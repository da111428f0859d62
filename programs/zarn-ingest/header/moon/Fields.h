/// Values of header keywords, read strictly: what is not of the expected form is told, not guessed.
#ifndef ZARN_INGEST_FIELDS_H
#define ZARN_INGEST_FIELDS_H

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>

#include "zarn-ingest/header/HeaderText.h"

namespace zarn::ingest {

/// A keyword that has a value.
struct Field {
    std::string keyword;
    std::string value;  ///< as CFITSIO reads it, a text in its quotes; not empty
    std::size_t line;
};

/// A value of another form, and its line.
class Malformed : public std::runtime_error {
public:
    Malformed(const std::string& text, std::size_t line) : std::runtime_error(text), line_(line) {}

    std::size_t line() const { return line_; }

private:
    std::size_t line_;
};

/// The first card of a keyword in a header, as readers take it, or none.
const Card* cardOf(const Header& header, const std::string& keyword);

/// The keyword in the first of a text's headers that has it, unless it is without value or blank.
std::optional<Field> fieldOf(const HeaderText& text, const std::string& keyword);

/// @throw std::invalid_argument  quoting a value and saying what is wrong with it
[[noreturn]] void refuseValue(const std::string& value, const std::string& problem);

/// Whether a value stands in quotes.
bool isText(const std::string& value);

/// What stands between the quotes, without trailing blanks.
///
/// @throw std::invalid_argument  for a value without quotes
std::string textOf(const std::string& value);

/// A number as FITS writes it: with a plus sign, or a D for the exponent, as may be.
///
/// @throw std::invalid_argument  for anything else, and beyond the limits
double numberOf(const std::string& value, double least, double most);

/// What `parse` makes of a field's value.
///
/// @throw Malformed  naming the keyword, where `parse` throws std::invalid_argument
template <typename Parse>
auto parsed(const Field& field, Parse parse) {
    try {
        return parse(field.value);
    } catch (const std::invalid_argument& error) {
        throw Malformed(field.keyword + ": " + error.what(), field.line);
    }
}

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_FIELDS_H
