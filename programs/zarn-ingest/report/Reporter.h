/// What the operator sees: messages, progress and the summary, all on standard error.
#ifndef ZARN_INGEST_REPORTER_H
#define ZARN_INGEST_REPORTER_H

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "zarn-ingest/report/ReportFile.h"
#include "zarn-ingest/result/Converter.h"

namespace zarn::ingest {

/// "in/x.hdr:7: text", or without a line "in/x.hdr: text", on one line.
std::string problemText(const std::string& file, std::size_t line, const std::string& text);

/// Messages, progress and summary of one run. Not for several threads.
class Reporter {
public:
    enum class Level { QUIET, NORMAL, VERBOSE };

    explicit Reporter(Level level);

    /// Sends everything to the log instead, conversions at INFO.
    void useLog() { toLog_ = true; }

    /// The work begins: `total` files, up to which progress is shown on a terminal, from the first
    /// second on.
    void begin(std::size_t total);

    /// Adds each file that is done with to a report.
    ///
    /// @throw std::exception  when the report cannot be opened
    void useReport(const std::string& fileName);

    /// More files are done with, well or badly.
    void done(const std::vector<Conversion>& conversions);

    /// Messages about the run as a whole.
    void error(const std::string& text);
    void info(const std::string& text);

    /// @param done    what was done with files, for example "converted"
    /// @param signal  the signal that ended the run early, or 0
    void summary(const std::string& done, int signal);

    bool anyFailed() const { return failed_ > 0 || reportFailed_; }

private:
    using Clock = std::chrono::steady_clock;

    enum class Kind { ERROR, INFO };

    void tell(const std::string& file, const Outcome& outcome);
    void converted(const std::string& file, const Outcome& outcome);
    void addToReport(const std::vector<Conversion>& conversions);
    void message(Kind kind, const std::string& text);
    std::string markedText() const;
    void showProgress();
    void clearProgress();

    Level level_;
    bool toLog_ = false;
    std::unique_ptr<ReportFile> report_;  ///< none: no report was asked for
    bool reportFailed_ = false;
    std::size_t total_ = 0;  ///< 0: no progress is shown
    std::size_t files_ = 0;  ///< to be done; 0: unknown
    std::size_t converted_ = 0;
    std::size_t warned_ = 0;                      ///< files with a warning
    std::size_t repaired_ = 0;                    ///< files
    std::map<std::string, std::size_t> repairs_;  ///< files by the words of their repairs
    std::size_t failed_ = 0;
    std::map<MoonCards::State, std::size_t> moon_;  ///< files converted; empty: without the moon
    std::size_t progressLength_ = 0;                ///< columns of the progress line on the screen
    Clock::time_point start_ = Clock::now();
    Clock::time_point shown_ = start_;
};

}  // namespace zarn::ingest

#endif  // ZARN_INGEST_REPORTER_H
