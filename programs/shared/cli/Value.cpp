#include "shared/cli/Value.h"

#include <zarnsys/util/StringUtils.h>

#include <algorithm>
#include <charconv>
#include <system_error>

#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"

namespace zarn {

void refuseText(const std::string& text, const std::string& problem) {
    throw std::invalid_argument("\"" + printable(text) + "\" " + problem);
}

std::vector<std::string> wordsOf(const std::string& choice) {
    std::vector<std::string> words;
    ZarnSys::split(choice, "|", words);
    return words;
}

std::string alternatives(const std::string& choice) {
    const std::vector<std::string> words = wordsOf(choice);
    std::string text = words.front();
    for (std::size_t i = 1; i < words.size(); ++i)
        text += (i + 1 < words.size() ? ", " : " or ") + words[i];
    return text;
}

std::size_t indexInChoice(const std::string& text, const std::string& choice) {
    const std::vector<std::string> words = wordsOf(choice);
    const auto found = std::find(words.begin(), words.end(), text);
    if (found == words.end()) throw WrongValue(alternatives(choice));
    return static_cast<std::size_t>(found - words.begin());
}

unsigned parseWhole(const std::string& text, unsigned least, unsigned most) {
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end || number < least || number > most) {
        throw WrongValue("a whole number from " + std::to_string(least) + " to " +
                         std::to_string(most));
    }
    return number;
}

bool parseFlag(const std::string& text) {
    if (text != "T" && text != "F") throw WrongValue("T or F");
    return text == "T";
}

std::string shortest(double number) {
    TextWriter text;
    text << number;
    return text.str();
}

}  // namespace zarn
