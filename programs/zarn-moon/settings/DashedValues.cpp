#include "zarn-moon/settings/DashedValues.h"

#include <algorithm>

#include "shared/cli/BeginsWith.h"
#include "shared/cli/Printable.h"

namespace zarn::moon {

namespace {

constexpr char MARK = '\x01';  // no value that means anything begins with it

bool isDashed(const std::string& word) { return beginsWith(word, "-"); }

/// Whether a word that begins with a dash is a value nonetheless: no option is a number.
bool mustBeValue(const std::string& word) {
    return word == "-" || word.find_first_of("0123456789.") == 1;
}

std::string marked(const std::string& value) {
    const bool ambiguous = isDashed(value) || value.find(MARK) == 0;
    return ambiguous ? MARK + value : value;
}

/// The row of a long option, by its name or the beginning of one alone; null: none, or several.
const OptionRow* rowOf(const std::string& name, const std::vector<OptionRow>& rows) {
    const OptionRow* found = nullptr;
    for (const OptionRow& row : rows) {
        if (row.name == name) return &row;
        if (!beginsWith(row.name, name)) continue;
        if (found != nullptr) return nullptr;
        found = &row;
    }
    return found;
}

/// Goes through a command line, word by word.
class Marker {
public:
    explicit Marker(const std::vector<OptionRow>& rows) : rows_(rows) {}

    void add(const std::string& word) {
        if (awaiting_ != nullptr) {
            addValue(word);
        } else if (beginsWith(word, "--")) {
            addLong(word);
        } else if (isDashed(word)) {
            addLetters(word);
        } else {
            result_.words.push_back(word);
        }
    }
    const ParsableArguments& result() const { return result_; }

private:
    bool takesValue(const OptionRow* row) const { return row != nullptr && !row->argument.empty(); }

    /// The word after an option that takes a value.
    void addValue(const std::string& word) {
        const std::string option = "--" + awaiting_->name;
        if (isDashed(word) && !mustBeValue(word) && result_.problem.empty()) {
            result_.problem = "option " + option + " lacks its value before \"" + printable(word) +
                              "\"; a value that begins with a dash is written " + option + "=VALUE";
        }
        awaiting_ = nullptr;
        result_.words.push_back(marked(word));
    }
    /// A word "--name" or "--name=value".
    void addLong(const std::string& word) {
        const std::size_t value = word.find('=') + 1;
        if (value > 0) {
            result_.words.push_back(word.substr(0, value) + marked(word.substr(value)));
            return;
        }
        const OptionRow* const row = rowOf(word.substr(2), rows_);
        if (takesValue(row)) awaiting_ = row;
        result_.words.push_back(word);
    }
    /// A word "-abc": letters, the last one perhaps with its value.
    void addLetters(const std::string& word) {
        result_.words.push_back(word);
        for (std::size_t at = 1; at < word.size(); ++at) {
            const auto row = std::find_if(rows_.begin(), rows_.end(), [&](const OptionRow& one) {
                return one.hasLetter() && one.letter == word[at];
            });
            if (row == rows_.end() || row->argument.empty()) continue;
            if (at + 1 == word.size()) awaiting_ = &*row;
            result_.words.back() = word.substr(0, at + 1) + marked(word.substr(at + 1));
            return;
        }
    }

    const std::vector<OptionRow>& rows_;
    const OptionRow* awaiting_ = nullptr;  ///< of the option whose value is due
    ParsableArguments result_;
};

}  // namespace

ParsableArguments markDashes(const std::vector<const char*>& arguments,
                             const std::vector<OptionRow>& rows) {
    Marker marker(rows);
    for (const char* const argument : arguments) marker.add(argument);
    return marker.result();
}

std::string unmarked(const std::string& value) {
    return value.substr(beginsWith(value, std::string(1, MARK)) ? 1 : 0);
}

}  // namespace zarn::moon
