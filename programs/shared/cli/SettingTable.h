/// A program's settings as a table, one row each: from it come the command line, the help, the
/// completion for bash and what a properties file may hold.
#ifndef ZARN_PROGRAMS_SETTINGTABLE_H
#define ZARN_PROGRAMS_SETTINGTABLE_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "shared/cli/OptionTable.h"
#include "shared/cli/SettingRow.h"
#include "shared/cli/Value.h"
#include "shared/sky/Angles.h"

namespace zarn {

/// Puts one value, as the user wrote it, where its row says. Keeps references to what it is made
/// of: for use within a call.
template <typename Settings>
class ValueReader {
public:
    ValueReader(const SettingRow<Settings>& row, Settings& settings, const std::string& value)
        : row_(row), settings_(settings), value_(value) {}

    void operator()(typename Kinds<Settings>::Flag member) const {
        settings_.*member = parseFlag(value_);
    }
    void operator()(typename Kinds<Settings>::Name member) const {
        settings_.*member = value_;
        if (value_.empty()) throw std::invalid_argument("the name is empty");
    }
    void operator()(typename Kinds<Settings>::Names member) const {
        (settings_.*member).push_back(value_);
    }
    void operator()(typename Kinds<Settings>::Whole whole) const {
        settings_.*whole.member = parseWhole(value_, whole.least, whole.most);
    }
    void operator()(typename Kinds<Settings>::Number number) const {
        settings_.*number.member = parseNumber(value_, number.least, number.most);
    }
    void operator()(typename Kinds<Settings>::OptionalNumber number) const {
        settings_.*number.member = parseNumber(value_, number.least, number.most);
    }
    void operator()(typename Kinds<Settings>::Choice choice) const {
        choice.choose(settings_, indexInChoice(value_, row_.argument));
    }
    void operator()(typename Kinds<Settings>::Own own) const { own.read(settings_, value_); }
    void operator()(typename Kinds<Settings>::Each each) const { each.read(settings_, value_); }

private:
    const SettingRow<Settings>& row_;
    Settings& settings_;
    const std::string& value_;
};

/// Whether a row takes every value that is given, instead of the last one.
template <typename Settings>
bool takesMany(const SettingRow<Settings>& row) {
    return std::holds_alternative<typename Kinds<Settings>::Names>(row.member) ||
           std::holds_alternative<typename Kinds<Settings>::Each>(row.member);
}

/// Reads the values of a setting, one at least.
///
/// @param refuse  called with what is wrong and the value, to throw what says where it came from
template <typename Settings, typename Refuse>
void readValues(const SettingRow<Settings>& row, std::vector<std::string> values,
                Settings& settings, Refuse refuse) {
    if (!takesMany(row)) values = {values.back()};
    if (const auto* names = std::get_if<typename Kinds<Settings>::Names>(&row.member))
        (settings.**names).clear();
    for (const std::string& value : values) {
        try {
            std::visit(ValueReader<Settings>(row, settings, value), row.member);
        } catch (const std::invalid_argument& error) {
            refuse(error, value);
        }
    }
}

/// A setting's default as users write it, taken from default-constructed settings; empty: none. A
/// number that no user may give stands for none, too.
template <typename Settings>
std::string defaultOf(const SettingRow<Settings>& row) {
    using K = Kinds<Settings>;
    const Settings settings;
    if (const auto* flag = std::get_if<typename K::Flag>(&row.member))
        return settings.**flag ? "T" : "F";
    if (const auto* name = std::get_if<typename K::Name>(&row.member)) return settings.**name;
    if (const auto* whole = std::get_if<typename K::Whole>(&row.member)) {
        const unsigned number = settings.*whole->member;
        return number < whole->least ? "" : std::to_string(number);
    }
    if (const auto* number = std::get_if<typename K::Number>(&row.member))
        return shortest(settings.*number->member);
    if (const auto* choice = std::get_if<typename K::Choice>(&row.member))
        return wordsOf(row.argument)[choice->chosen(settings)];
    const auto* own = std::get_if<typename K::Own>(&row.member);
    return own != nullptr && own->shown != nullptr ? own->shown(settings) : "";
}

/// The options of a program's table, for parser and help.
template <typename Settings>
std::vector<OptionRow> optionsOf(const std::vector<SettingRow<Settings>>& rows) {
    std::vector<OptionRow> options;
    for (const auto& row : rows) {
        if (row.help == nullptr) continue;
        const bool takesArgument = *row.argument != '\0';
        const std::string value = takesArgument ? defaultOf(row) : "";
        options.push_back(
            {row.name, row.letter, row.argument, row.help, value.empty() ? row.absent : value});
    }
    return options;
}

/// A program's command line, read by the table of its settings.
template <typename Settings>
class SettingsParser : public OptionTable {
public:
    /// @param arguments  the process's arguments, its name first
    template <std::size_t SIZE>
    SettingsParser(std::vector<const char*> arguments, const SettingRow<Settings> (&rows)[SIZE])
        : SettingsParser(std::move(arguments), std::vector(rows, rows + SIZE)) {}

protected:
    /// Sets the flags that were given, and reads no value.
    void readFlags(Settings& settings) const {
        for (const auto& row : rows_) {
            const auto* flag = std::get_if<typename Kinds<Settings>::Flag>(&row.member);
            if (flag != nullptr && isGiven(row)) settings.** flag = true;
        }
    }

    /// Puts all that was given into the settings; what was not given stays.
    ///
    /// @throw UsageError  naming option and value, for a value that is wrong
    void readOptions(Settings& settings) const {
        readFlags(settings);
        for (const auto& row : rows_) {
            if (isGiven(row) && *row.argument != '\0') readOption(row, settings);
        }
    }

private:
    SettingsParser(std::vector<const char*> arguments, std::vector<SettingRow<Settings>> rows)
        : OptionTable(std::move(arguments), optionsOf(rows)), rows_(std::move(rows)) {}

    bool isGiven(const SettingRow<Settings>& row) const {
        return row.help != nullptr && given(row.name);
    }
    void readOption(const SettingRow<Settings>& row, Settings& settings) const {
        readValues(row, values(row.name), settings,
                   [&row](const std::invalid_argument& error, const std::string& value) {
                       throw wrongOption(row.name, error, value);
                   });
    }

    std::vector<SettingRow<Settings>> rows_;
};

}  // namespace zarn

#endif  // ZARN_PROGRAMS_SETTINGTABLE_H
