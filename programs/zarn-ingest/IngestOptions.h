/// The command line of zarn-ingest.
#ifndef ZARN_INGEST_INGESTOPTIONS_H
#define ZARN_INGEST_INGESTOPTIONS_H

#include <zarnsys/util/GenConfig.h>

#include <stdexcept>
#include <string>
#include <vector>

/// A command line that cannot be carried out; the text says why.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct IngestOptions {
    std::vector<std::string> arguments;  ///< paths and patterns
    std::vector<std::string> lists;      ///< files that hold names
    std::string outputDir = ".";
    bool standardInput = false;  ///< names from there, too
    bool nulSeparated = false;   ///< names in lists and standard input, instead of one a line
    bool overwrite = false;
    bool dryRun = false;
    bool checksum = false;
    bool quiet = false;
    bool verbose = false;
    bool help = false;
    bool version = false;
};

/// Parser and help.
class IngestConfig : public GenConfig {
public:
    /// @param arguments  the process's arguments, its name first
    explicit IngestConfig(std::vector<const char*> arguments);

    /// What the command line asks for.
    ///
    /// @throw UsageError  after the parser has logged the details, or for options that exclude
    ///                    or lack each other
    IngestOptions parse();

    /// Writes the options and what a user should know besides to standard output.
    void displayFullHelp() const;

private:
    bool given(const std::string& option) const;
};

#endif  // ZARN_INGEST_INGESTOPTIONS_H
