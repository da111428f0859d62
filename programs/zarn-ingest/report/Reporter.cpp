#include "zarn-ingest/report/Reporter.h"

#include <unistd.h>

#include <cstring>
#include <iomanip>
#include <iostream>

#include "shared/cli/Printable.h"
#include "shared/cli/Reason.h"
#include "shared/cli/TextStreams.h"
#include "zarn-ingest/report/Remarks.h"
#include "zarn-ingest/report/RollingLog.h"
#include "zarnsys/util/Log.h"

namespace zarn::ingest {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

const char PROGRAM[] = "zarn-ingest: ";
constexpr milliseconds PROGRESS_AFTER{1000};  // shorter work needs none
constexpr milliseconds PROGRESS_EVERY{200};

double inSeconds(std::chrono::steady_clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

std::string location(const std::string& file, std::size_t line) {
    return printable(file) + ":" + (line > 0 ? std::to_string(line) + ":" : "") + " ";
}

std::string minutesAndSeconds(double duration) {
    const auto whole = static_cast<unsigned long>(duration);
    TextWriter text;
    text << whole / 60 << ":" << std::setw(2) << std::setfill('0') << whole % 60;
    return text.str();
}

}  // namespace

std::string problemText(const std::string& file, std::size_t line, const std::string& text) {
    return location(file, line) + printable(text);
}

Reporter::Reporter(Level level) : level_(level) {}

void Reporter::begin(std::size_t total) {
    const bool seen = level_ != Level::QUIET && !toLog_ && ::isatty(STDERR_FILENO) == 1;
    total_ = seen ? total : 0;
    files_ = total;
    start_ = Clock::now();
}

void Reporter::done(const std::vector<Conversion>& conversions) {
    for (const Conversion& one : conversions) tell(one.input.name, one.outcome);
    addToReport(conversions);
    showProgress();
}

void Reporter::tell(const std::string& file, const Outcome& outcome) {
    if (outcome.converted()) {
        converted(file, outcome);
    } else {
        ++failed_;
        message(Kind::ERROR, problemText(file, outcome.line, outcome.problem));
    }
}

void Reporter::converted(const std::string& file, const Outcome& outcome) {
    ++converted_;
    bool warned = false;
    for (const auto& [line, text, isWarning] : remarksOf(outcome)) {
        warned = warned || isWarning;
        if (level_ != Level::QUIET)
            message(Kind::INFO, location(file, line) + (isWarning ? "warning: " : "") + text);
    }
    if (warned) ++warned_;
    if (!outcome.repairs.empty()) ++repaired_;
    for (const auto& [word, tally] : byWord(outcome.repairs)) ++repairs_[word];
    if (outcome.moon.state != MoonCards::State::NOT_ASKED) ++moon_[outcome.moon.state];
    if (level_ == Level::VERBOSE || toLog_)
        message(Kind::INFO, printable(file) + ": gave " + printable(outcome.result));
}

/// A report that cannot be written is told of once, and the run has not done all it was asked to.
void Reporter::addToReport(const std::vector<Conversion>& conversions) {
    if (report_ == nullptr) return;
    try {
        report_->add(conversions);
    } catch (const std::exception& reason) {
        if (!reportFailed_) error("the report " + report_->name() + ": " + reasonOf(reason));
        reportFailed_ = true;
    }
}

void Reporter::useReport(const std::string& fileName) {
    report_ = std::make_unique<ReportFile>(fileName);
}

void Reporter::error(const std::string& text) { message(Kind::ERROR, printable(text)); }

void Reporter::info(const std::string& text) {
    if (level_ != Level::QUIET) message(Kind::INFO, printable(text));
}

void Reporter::summary(const std::string& done, int signal) {
    clearProgress();
    if (level_ == Level::QUIET) return;
    TextWriter text;
    if (signal != 0) text << "stopped by a signal (" << ::strsignal(signal) << "): ";
    text << converted_ << " " << done;
    text << markedText();
    text << ", " << failed_ << " failed";
    if (signal != 0 && files_ > 0) text << ", " << files_ - converted_ - failed_ << " left";
    text << " in " << std::fixed << std::setprecision(1) << inSeconds(Clock::now() - start_)
         << " s";
    if (!moon_.empty()) {
        text << "; moon: " << moon_[MoonCards::State::GIVEN] << " with values, "
             << moon_[MoonCards::State::WITHOUT] << " without position or time, "
             << moon_[MoonCards::State::MALFORMED] << " malformed";
    }
    message(Kind::INFO, text.str());
}

void Reporter::message(Kind kind, const std::string& text) {
    if (toLog_) RollingLog::keepOpen();
    if (!toLog_) {
        clearProgress();
        std::cerr << PROGRAM + text + "\n";
    } else if (kind == Kind::ERROR) {
        logError()("%s", text.c_str());
    } else {
        logInfo()("%s", text.c_str());
    }
}

/// " (3 repaired: axes 2, long 1; 2 with warnings)", or less where there is nothing to say.
std::string Reporter::markedText() const {
    std::string text;
    if (repaired_ > 0) text = std::to_string(repaired_) + " repaired";
    const char* divider = ": ";
    for (const auto& [word, files] : repairs_) {
        text.append(divider).append(word).append(" ").append(std::to_string(files));
        divider = ", ";
    }
    if (warned_ > 0)
        text.append(text.empty() ? "" : "; ").append(std::to_string(warned_) + " with warnings");
    return text.empty() ? "" : " (" + text + ")";
}

void Reporter::showProgress() {
    const Clock::time_point now = Clock::now();
    if (total_ == 0 || now - start_ < PROGRESS_AFTER || now - shown_ < PROGRESS_EVERY) return;
    shown_ = now;
    const std::size_t done = converted_ + failed_;
    const double rate = static_cast<double>(done) / inSeconds(now - start_);
    TextWriter text;
    text << PROGRAM << done << "/" << total_ << " files, " << std::fixed << std::setprecision(0)
         << rate << "/s, " << minutesAndSeconds(static_cast<double>(total_ - done) / rate)
         << " left";
    clearProgress();
    progressLength_ = text.str().size();
    std::cerr << text.str() + "\r";
}

void Reporter::clearProgress() {
    if (progressLength_ == 0) return;
    std::cerr << std::string(progressLength_, ' ') + "\r";
    progressLength_ = 0;
}

}  // namespace zarn::ingest
