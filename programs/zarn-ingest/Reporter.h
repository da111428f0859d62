/// What the operator sees: messages, progress and the summary, all on standard error.
#ifndef ZARN_INGEST_REPORTER_H
#define ZARN_INGEST_REPORTER_H

#include <chrono>
#include <cstddef>
#include <string>

#include "HeaderText.h"
#include "IngestError.h"

/// `text` on one line: control characters as \xHH, so that a name or a card can neither break a
/// line nor reach the terminal.
std::string printable(const std::string& text);

class Reporter {
public:
    enum class Level { QUIET, NORMAL, VERBOSE };

    explicit Reporter(Level level);

    /// How many files the progress line counts up to.
    void begin(std::size_t total) { total_ = total; }

    /// One more file is done. On a terminal, after the first second, progress is shown.
    void converted(const std::string& file, const Losses& losses, bool checksumRenewed,
                   const std::string& result);
    void failed(const std::string& file, const IngestError& error);

    /// A message about the run as a whole.
    void error(const std::string& text);

    /// @param done    what was done with files, for example "converted"
    /// @param signal  the signal that ended the run early, or 0
    void summary(const std::string& done, int signal);

    bool anyFailed() const { return failed_ > 0; }

private:
    using Clock = std::chrono::steady_clock;

    void message(const std::string& text);
    void warn(const std::string& file, const Loss& loss, const std::string& text);
    void showProgress();
    void clearProgress();

    Level level_;
    bool terminal_;
    std::size_t total_ = 0;
    std::size_t converted_ = 0;
    std::size_t warnings_ = 0;
    std::size_t warned_ = 0;  ///< files with a warning
    std::size_t failed_ = 0;
    std::size_t progressLength_ = 0;  ///< columns of the progress line on the screen
    Clock::time_point start_ = Clock::now();
    Clock::time_point shown_ = start_;
};

#endif  // ZARN_INGEST_REPORTER_H
