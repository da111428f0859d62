/// What a row of a program's table of settings says.
#ifndef ZARN_PROGRAMS_SETTINGROW_H
#define ZARN_PROGRAMS_SETTINGROW_H

#include <cstddef>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace zarn {

/// The kinds of members that a program's `Settings` may have. The kind says how a value is read.
template <typename Settings>
struct Kinds {
    using Flag = bool Settings::*;
    using Name = std::string Settings::*;                ///< of a file or the like, never empty
    using Names = std::vector<std::string> Settings::*;  ///< as many as are given

    /// A whole number within its bounds.
    struct Whole {
        unsigned Settings::*member;
        unsigned least;
        unsigned most;
    };
    /// A decimal number within its bounds.
    struct Number {
        double Settings::*member;
        double least;
        double most;
    };
    /// The same, absent unless given.
    struct OptionalNumber {
        std::optional<double> Settings::*member;
        double least;
        double most;
    };
    /// One of the words of the row's argument, by their order; `choice` below makes it.
    struct Choice {
        void (*choose)(Settings&, std::size_t);
        std::size_t (*chosen)(const Settings&);
    };
    /// A value that a function of its own reads. The function throws WrongValue, or
    /// std::invalid_argument with a text that quotes the value.
    struct Own {
        void (*read)(Settings&, const std::string&);
        std::string (*shown)(const Settings&) = nullptr;  ///< for the help; none: no default
    };
    /// The same for an option that may be repeated: the function reads each value.
    struct Each {
        void (*read)(Settings&, const std::string&);
    };
    using Any = std::variant<Flag, Name, Names, Whole, Number, OptionalNumber, Choice, Own, Each>;
};

/// One setting: an option, a property, or both under the same name.
template <typename Settings>
struct SettingRow {
    const char* name;      ///< long name of the option, key of the property
    char letter;           ///< short name of the option; GenConfig::NO_SHORT_NAME: none
    const char* argument;  ///< what the option takes, as OptionTable completes it; empty: a flag
    const char* help;      ///< of the option; null: a property alone
    typename Kinds<Settings>::Any member;
    const char* section = nullptr;  ///< of the property; null: an option alone
    const char* absent = "";        ///< what the help calls an empty default
};

/// An enumeration whose values have the order of the words in the row's argument.
template <auto MEMBER, typename Settings>
constexpr typename Kinds<Settings>::Choice choice() {
    using Value = std::remove_reference_t<decltype(std::declval<Settings&>().*MEMBER)>;
    return {
        [](Settings& settings, std::size_t index) { settings.*MEMBER = static_cast<Value>(index); },
        [](const Settings& settings) { return static_cast<std::size_t>(settings.*MEMBER); }};
}

}  // namespace zarn

#endif  // ZARN_PROGRAMS_SETTINGROW_H
