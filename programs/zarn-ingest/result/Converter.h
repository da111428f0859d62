/// From one header text file to one FITS file.
#ifndef ZARN_INGEST_CONVERTER_H
#define ZARN_INGEST_CONVERTER_H

#include <sys/types.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zarn-ingest/header/HeaderText.h"
#include "zarn-ingest/result/Input.h"
#include "zarn-ingest/result/Outcome.h"
#include "zarn-ingest/result/OutputDirectory.h"

namespace zarn::ingest {

/// How results are made.
struct ConversionOptions {
    bool force = false;     ///< replace results that exist
    bool dryRun = false;    ///< examine only
    bool checksum = false;  ///< add DATASUM and CHECKSUM
    bool durable = false;   ///< results are safe on disk before `convert` returns
    bool resume = false;    ///< one that exists already from the same text, as after a crash,
                            ///< counts as converted
    ReadingOptions reading;
    std::optional<Telescope> moon;  ///< add the moon's values for it
};

/// Name of the result of an input: its base name up to the last dot that is not its first
/// character, and ".fits".
std::string resultName(const std::string& input);

/// Converts inputs one after the other; keeps its output and working directories open meanwhile.
class Converter {
public:
    /// @throw std::exception  with the reason when results cannot be written there
    Converter(const ConversionOptions& options, const OutputDirectory& output);

    /// Begins a batch: no two of its inputs may have one result, nor may a result replace one of
    /// its inputs or other `sources`.
    void beginBatch(const std::vector<Input>& inputs, const std::vector<std::string>& sources);

    /// Converts one input, or in a dry run says on standard output that it would.
    ///
    /// The result's file is held open from its verification to its name in place, and the output
    /// directory from the beginning: what was verified is what is renamed, and where. After
    /// `STOPPED` a new object begins with what the names lead to by then.
    Outcome convert(const Input& input);

    /// Notes that another run converts this input of the batch: its result is not to be given to a
    /// later one.
    void leave(const Input& input);

private:
    using FileId = std::pair<dev_t, ino_t>;
    struct Source;

    void convertOrThrow(const Input& input, Outcome& outcome);
    void protect(const std::string& source);
    void claim(const Input& input, const std::string& name);
    bool isFree(const std::string& result) const;
    bool isKept(const HeaderText& text, const std::string& result) const;
    void checkReplaceable(const std::string& result) const;
    void writeOrExplain(const Source& source, const std::string& name) const;
    void write(const Source& source, const std::string& name) const;

    const ConversionOptions options_;
    const OutputDirectory output_;
    std::unique_ptr<WorkDirectory> work_;                         ///< none in a dry run
    std::unordered_map<std::string, const std::string*> claims_;  ///< result, and the input for it
    std::set<FileId> sources_;  ///< files never to be replaced; known when overwriting only
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_CONVERTER_H
