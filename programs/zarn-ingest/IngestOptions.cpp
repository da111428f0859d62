#include "IngestOptions.h"

#include <iostream>

namespace {

constexpr char NONE = GenConfig::NO_SHORT_NAME;

// The program's options: long name, short name, argument (none: a flag), help, default.
const struct {
    const char* name;
    char shortName;
    const char* argument;
    const char* help;
    const char* defaultValue;
} OPTIONS[] = {
    {"checksum", 'c', "", "Add DATASUM and CHECKSUM to each result", ""},
    {"dry-run", 'n', "", "Say what would be done, and do nothing", ""},
    {"force", 'f', "", "Replace results that exist", ""},
    {"help", 'h', "", "Show this help", ""},
    {"list", 'l', "FILE", "Convert the files named in FILE, one name a line; may be repeated", ""},
    {"null", '0', "", "Names in lists and on standard input end in NUL instead (short: -0)", ""},
    {"output-dir", 'o', "DIR", "Directory of the results, created when missing (one level)",
     ". (the current directory)"},
    {"quiet", 'q', "", "Report errors only, without warnings and summary", ""},
    {"stdin", NONE, "", "Convert the files named on standard input", ""},
    {"verbose", 'v', "", "Report each file, and the library's own log lines below ERROR", ""},
    {"version", 'V', "", "Show the versions of the program and its libraries", ""},
};

const char NOTES[] = R"(
Each line of a header text file becomes one card of a FITS file that holds this
header and no data. The result of dir/name.ext is DIR/name.fits: it appears when
it is complete and can be read, or not at all. Nothing else is touched.

An argument that names an existing file is that file; any other is expanded as a
shell pattern. Names from lists are never patterns. A name that begins with a
dash is written ./-name.hdr; so is a directory or list for an option.

Messages read "zarn-ingest: FILE:LINE: text", lines counted from 1.

Exit status: 0 every file was converted, with warnings or not; 1 some were not;
2 wrong usage; 130, 143 or 129 stopped by Ctrl-C, SIGTERM or SIGHUP, after the
file in hand was finished.
)";

}  // namespace

IngestConfig::IngestConfig(std::vector<const char*> arguments)
    : GenConfig(static_cast<int>(arguments.size()), arguments.data()) {
    for (const auto& [name, shortName, argument, help, defaultValue] : OPTIONS) {
        const bool takesArgument = *argument != '\0';
        optionMap_[name] = {shortName, argument, false, takesArgument, help, defaultValue};
    }
    optionMap_[NON_OPTIONAL_ARG] = {NONE,
                                    "FILE|PATTERN...",
                                    false,
                                    false,
                                    "Header text files, unless --list or --stdin names them",
                                    ""};
}

bool IngestConfig::given(const std::string& option) const {
    return !optionMap_.at(option).availValues_.empty();
}

IngestOptions IngestConfig::parse() {
    if (parseCommandLine(true) != 0) throw UsageError("the command line is wrong");
    IngestOptions options;
    options.arguments = argumentVect_;
    options.lists = optionMap_.at("list").availValues_;
    if (given("output-dir")) options.outputDir = optionMap_.at("output-dir").availValues_.back();
    options.standardInput = given("stdin");
    options.nulSeparated = given("null");
    options.overwrite = given("force");
    options.dryRun = given("dry-run");
    options.checksum = given("checksum");
    options.quiet = given("quiet");
    options.verbose = given("verbose");
    options.help = given("help");
    options.version = given("version");
    if (options.help || options.version) return options;
    const bool named = !options.lists.empty() || options.standardInput;
    if (options.outputDir.empty()) throw UsageError("option --output-dir: the name is empty");
    if (options.quiet && options.verbose)
        throw UsageError("--quiet and --verbose exclude each other");
    if (options.nulSeparated && !named) throw UsageError("--null needs --list or --stdin");
    if (options.arguments.empty() && !named) throw UsageError("no file to convert");
    return options;
}

void IngestConfig::displayFullHelp() const {
    displayHelp();
    std::cout << NOTES << std::flush;
}
