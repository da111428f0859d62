#include "zarn-ingest/report/ReportFile.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <ctime>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>

#include "shared/cli/Printable.h"
#include "shared/sky/Calendar.h"
#include "zarn-ingest/report/Remarks.h"

namespace zarn::ingest {

namespace {

using Json = nlohmann::ordered_json;

const char* statusOf(const Outcome& outcome) {
    if (outcome.converted()) return "converted";
    return outcome.status == Outcome::Status::FAILED ? "failed" : "waits";
}

std::string now() {
    return secondOf(MJD_OF_EPOCH + static_cast<double>(std::time(nullptr)) / SECONDS_PER_DAY) + "Z";
}

template <typename Number>
Json orNull(Number number) {
    return number == 0 ? Json() : Json(number);
}

Json repairsOf(const Outcome& outcome) {
    Json repairs = Json::object();
    for (const auto& [word, tally] : byWord(outcome.repairs))
        repairs[word] = {{"count", tally.count}, {"first_line", tally.firstLine}};
    return repairs;
}

Json warningsOf(const Outcome& outcome) {
    Json warnings = Json::array();
    for (const auto& [line, text, isWarning] : remarksOf(outcome)) {
        if (isWarning) warnings.push_back({{"line", line}, {"text", printable(text)}});
    }
    return warnings;
}

std::string lineOf(const std::string& source, const Outcome& outcome) {
    Json object = {{"time", now()},
                   {"source", printable(source)},
                   {"result", printable(outcome.result)},
                   {"status", statusOf(outcome)},
                   {"hdus", outcome.hdus},
                   {"cards", outcome.cards},
                   {"bytes", outcome.size},
                   {"repairs", repairsOf(outcome)},
                   {"warnings", warningsOf(outcome)}};
    if (!outcome.converted()) {
        object["line"] = orNull(outcome.line);
        object["text"] = printable(outcome.problem);
        object["cfitsio_status"] = orNull(outcome.fitsStatus);
    }
    return object.dump() + "\n";
}

int openToAppend(const std::string& fileName) {
    const int fd = ::open(fileName.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0664);
    if (fd == -1) throw std::system_error(errno, std::generic_category(), "the report " + fileName);
    return fd;
}

/// Makes sure that a file holds nothing, or a report: what follows its last whole line is cut off.
void refuseOtherThanReport(const std::string& fileName) {
    std::ifstream file(fileName);
    const int first = file.get();
    if (first != std::ifstream::traits_type::eof() && first != '{')
        throw std::runtime_error("the report " + fileName + " holds something else than a report");
}

}  // namespace

ReportFile::ReportFile(const std::string& fileName)
    : name_(fileName), lock_(openToAppend(fileName)), file_(fileName) {
    refuseOtherThanReport(fileName);
    if (::flock(lock_.get(), LOCK_EX | LOCK_NB) != 0)
        throw std::runtime_error("another zarn-ingest writes the report " + fileName);
}

void ReportFile::add(const std::vector<Conversion>& conversions) {
    std::string lines;
    for (const Conversion& one : conversions) lines += lineOf(one.input.name, one.outcome);
    file_.add(lines);
}

}  // namespace zarn::ingest
