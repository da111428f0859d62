/// From one header text file to one FITS file.
#ifndef ZARN_INGEST_CONVERTER_H
#define ZARN_INGEST_CONVERTER_H

#include <sys/types.h>

#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "IngestOptions.h"
#include "Inputs.h"
#include "OutputDirectory.h"
#include "Reporter.h"

/// Name of the result of an input: its base name up to the last dot that is not its first
/// character, and ".fits".
std::string resultName(const std::string& input);

class Converter {
public:
    /// @param directory  where results go; none: nothing is written (a dry run in a directory that
    ///                   does not exist)
    Converter(const IngestOptions& options, std::optional<OutputDirectory>& directory,
              const std::vector<Input>& inputs, Reporter& reporter);

    /// Converts one input, or in a dry run says so, and reports how it went.
    void convert(const Input& input);

private:
    using FileId = std::pair<dev_t, ino_t>;

    void convertOrThrow(const Input& input);
    void claim(const Input& input, const std::string& result);
    void checkExisting(const std::string& result);
    void write(const HeaderText& text, const std::string& result);

    const IngestOptions& options_;
    std::optional<OutputDirectory>& directory_;
    Reporter& reporter_;
    std::unordered_map<std::string, const std::string*> claims_;  ///< result, and the input for it
    std::set<FileId> sources_;  ///< files never to be replaced; known when overwriting only
};

#endif  // ZARN_INGEST_CONVERTER_H
