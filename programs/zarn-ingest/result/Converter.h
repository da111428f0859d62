/// From one header text file to one FITS file.
#ifndef ZARN_INGEST_CONVERTER_H
#define ZARN_INGEST_CONVERTER_H

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "shared/files/FileVersion.h"
#include "shared/files/MemoryFile.h"
#include "zarn-ingest/header/HeaderText.h"
#include "zarn-ingest/result/Comparison.h"
#include "zarn-ingest/result/Input.h"
#include "zarn-ingest/result/Outcome.h"
#include "zarn-ingest/result/OutputDirectory.h"

namespace zarn::ingest {

/// How results are made.
struct ConversionOptions {
    bool force = false;    ///< replace results that exist
    bool dryRun = false;   ///< examine only
    bool durable = false;  ///< results are safe on disk before `finish` returns
    bool resume = false;   ///< one that exists already from the same text, as after a crash,
                           ///< counts as converted
    ReadingOptions reading;
    Additions additions;
};

/// With what the name of a result ends.
inline constexpr char RESULT_END[] = ".fits";

/// Name of the result of an input: its base name up to the last dot that is not its first
/// character, and `RESULT_END`.
std::string resultName(const std::string& input);

/// An input, and how far its conversion has come. Does not outlive the converter.
struct Conversion {
    explicit Conversion(Input converted) : input(std::move(converted)) {}

    Input input;
    Outcome outcome;
    bool isKept = false;  ///< an earlier run made the result; perhaps it is not safe on disk yet

    std::unique_ptr<WorkFile> file;  ///< the result without its name; none: there is none to name
    std::string name;                ///< that it will have
    std::optional<FileVersion> version;  ///< of the source that was read

    bool isPending() const { return file != nullptr; }
};

/// Converts inputs; keeps its output and working directories open meanwhile.
class Converter {
public:
    /// @throw std::exception  with the reason when results cannot be written there
    Converter(const ConversionOptions& options, const OutputDirectory& output);

    /// Begins a batch: no two of its inputs may have one result, nor may a result replace one of
    /// its inputs or other `sources`.
    void beginBatch(const std::vector<Input>& inputs, const std::vector<std::string>& sources);

    /// Makes and verifies the result of one input, which gets its name by `finish`; or in a dry run
    /// says on standard output that it would. The outcome says why there is none to name.
    ///
    /// The result's file is held open from its verification to its name in place, and the output
    /// directory from the beginning: what was verified is what is renamed, and where. After
    /// `STOPPED` a new object begins with what the names lead to by then.
    Conversion begin(const Input& input);

    /// Gives the results of several inputs their names, in their order, and makes them safe on disk
    /// together if that is asked for: first what the files hold, then their names. Afterwards each
    /// outcome says what became of its input.
    void finish(std::vector<Conversion>& conversions);

    /// Notes that another run converts this input of the batch: its result is not to be given to a
    /// later one.
    void leave(const Input& input);

private:
    void beginOrThrow(const Input& input, Conversion& conversion);
    void protect(const std::string& source);
    void claim(const Input& input, const std::string& name);
    bool isFree(const std::string& result) const;
    void checkReplaceable(const std::string& result) const;
    std::unique_ptr<WorkFile> writeOrExplain(const HeaderText& text);
    std::unique_ptr<WorkFile> write(const HeaderText& text);
    void syncFiles(const std::vector<Conversion>& conversions) const;
    void place(const Conversion& conversion) const;

    const ConversionOptions options_;
    const OutputDirectory output_;
    std::unique_ptr<WorkDirectory> work_;                         ///< none in a dry run
    MemoryFile memory_;                                           ///< for each text in its turn
    std::unordered_map<std::string, const std::string*> claims_;  ///< result, and the input for it
    std::set<FileId> sources_;  ///< files never to be replaced; known when overwriting only
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_CONVERTER_H
