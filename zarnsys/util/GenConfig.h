/// @file
/// Command lines: a table of options, its parser, and the help text made from the same table.
#ifndef ZARNSYS_UTIL_GENCONFIG_H
#define ZARNSYS_UTIL_GENCONFIG_H

#include <map>
#include <string>
#include <vector>

#include "Export.h"

/// Base class of every program's configuration.
///
/// The derived class passes the process's `argc` and `argv` on and fills `optionMap_` in its
/// constructor, one `OptionStruct` per option; the program then calls `parseCommandLine` once and
/// reads the values recorded. Short options ("-f value", "-fvalue", "-ab"), long options ("--name
/// value", "--name=value", any unambiguous beginning of the name) and non-option arguments stand
/// in any order. No option value may begin with "-". The rest is ACE's parser: "--" ends the
/// options only after a non-option argument ("./-x" names a file "-x" in any case), and the
/// environment variable POSIXLY_CORRECT makes the first non-option argument end them.
///
/// An object owns its copy of the command line and is used by one thread at a time. Nothing is
/// thrown but `std::bad_alloc`; failures are logged at ERROR and returned as -1.
class ZARNSYS_EXPORT GenConfig {
public:
    /// Values or arguments, in the order of the command line.
    using ValueVect = std::vector<std::string>;

    /// One row of the option table.
    struct ZARNSYS_EXPORT OptionStruct {
        /// A flag without short name and texts.
        OptionStruct();
        /// The members in their order, without `availValues_`, which starts empty.
        OptionStruct(char shortName, std::string argument, bool mandatory, bool argRequired,
                     std::string helpText, std::string defaultValue);

        char shortName_;            ///< letter or digit; NO_SHORT_NAME becomes a code when parsed
        std::string argument_;      ///< name of the argument, for the help
        bool mandatory_;            ///< the option (at least one non-option argument) must be given
        bool argRequired_;          ///< takes exactly one argument; false: a flag
        std::string helpText_;      ///< description, for the help
        ValueVect availValues_;     ///< values given, one per occurrence; of a flag: empty texts
        std::string defaultValue_;  ///< for the help only; the parser never applies it
    };

    /// Options by long name without dashes. Every walk goes in this order, byte by byte.
    using OptionMap = std::map<std::string, OptionStruct>;

    /// Marks an option without short name. At most 47 options of a table may have none: their
    /// codes, counted up from 1, must stay below the character "0".
    static constexpr char NO_SHORT_NAME = 0;

    /// Key of the table's row that describes the non-option arguments.
    static const std::string NON_OPTIONAL_ARG;

    /// Copies the command line. The program name is what follows the first "lt-" anywhere in
    /// `argv[0]`, else what follows its last "/", else the whole.
    ///
    /// @param argc  number of arguments, at least 1
    /// @param argv  the arguments, their strings as `main` gets them
    GenConfig(int argc, const char** argv);

    /// Copies the command line of `rpackageConfig`; table and arguments start empty.
    GenConfig(const GenConfig& rpackageConfig);

    /// Replaces the command line by a copy of the other's; table and arguments stay.
    GenConfig& operator=(const GenConfig& rpackageConfig);

    virtual ~GenConfig();

    /// Parses the command line against `optionMap_` and records what was given.
    ///
    /// Afterwards options without short name hold their code, the object's command line is in the
    /// order in which the parser left it (options first), and a second call appends to what is
    /// recorded. After the first error no more option values are recorded, but later errors are
    /// reported, and the non-option arguments are there.
    ///
    /// @param loggingAllowed  log each error at ERROR; the result is the same either way
    /// @return                0, or -1 when anything was wrong or a mandatory option is missing
    int parseCommandLine(bool loggingAllowed);

    /// Writes the help to standard output, flushed at each line end. A short name shows only
    /// where it is a letter.
    ///
    /// @return  always 0; the stream's state is not looked at
    int displayHelp() const;

    /// Logs the command line at INFO, in the order in which the parser left it.
    ///
    /// @return  always 0
    int displayCommandLine();

protected:
    OptionMap optionMap_;     ///< the option table, filled by the derived class
    ValueVect argumentVect_;  ///< non-option arguments, filled by `parseCommandLine`

private:
    int argc_;     ///< number of arguments
    char** argv_;  ///< own copy of the arguments; entry 0 is the program name
};

#endif  // ZARNSYS_UTIL_GENCONFIG_H
