#include "zarn-ingest/desk/StatusForms.h"

#include <cmath>
#include <cstdint>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"

namespace zarn::ingest {

namespace {

using Json = nlohmann::ordered_json;

/// A number that may be unknown.
using Value = std::optional<std::int64_t>;

Value whole(std::optional<std::size_t> number) {
    if (!number) return std::nullopt;
    return static_cast<std::int64_t>(*number);
}

Value mebibytes(std::optional<float> number) {
    if (!number) return std::nullopt;
    return std::llround(std::floor(*number));
}

Value bytes(std::optional<float> number) {
    constexpr double MEBIBYTE = 1048576.0;
    if (!number) return std::nullopt;
    return std::llround(static_cast<double>(*number) * MEBIBYTE);
}

Value timeOf(const std::optional<JournalEntry>& entry) {
    if (!entry) return std::nullopt;
    return std::llround(std::floor(entry->seconds));
}

constexpr std::size_t SECOND_LENGTH = 19;  // 2026-11-24T23:14:05, without fractions

std::string shown(const Value& value) { return value ? std::to_string(*value) : "unknown"; }

std::string shown(const std::optional<JournalEntry>& entry) {
    if (!entry) return "none";
    return entry->result + " at " + entry->time.substr(0, SECOND_LENGTH) + ", local time";
}

std::string textOf(const Status& status, const Settings& settings) {
    TextWriter text;
    const auto line = [&text](const char* name, const std::string& value) {
        constexpr int WIDTH = 18;
        text << std::left << std::setw(WIDTH) << name << printable(value) << '\n';
    };
    line("service", status.isRunning ? "runs" : "does not run");
    const std::string age =
        status.waiting == 0 ? "" : ", the oldest for " + std::to_string(status.oldestAge) + " s";
    line("waiting files", std::to_string(status.waiting) + age);
    line("last result", shown(status.lastResult));
    line("failures today", shown(whole(status.failuresToday)));
    line("failed files", shown(whole(status.failedFiles)));
    line("free space [MiB]", shown(mebibytes(status.freeSpace)) + ", at least " +
                                 std::to_string(settings.leastFree) + " are needed");
    for (const std::string& problem : status.problems) line("needs a person", problem);
    if (status.problems.empty()) line("needs a person", "nothing");
    return text.str();
}

Json jsonOf(const Value& value) { return value ? Json(*value) : Json(); }

Json jsonOf(const std::optional<JournalEntry>& entry) {
    if (!entry) return {};
    return {{"name", printable(entry->result)},
            {"source", printable(entry->source)},
            {"time", entry->time},
            {"unix_time", entry->seconds}};
}

std::string jsonOf(const Status& status, const Settings& settings) {
    Json problems = Json::array();
    for (const std::string& problem : status.problems) problems.push_back(printable(problem));
    const Json object = {{"service_running", status.isRunning},
                         {"waiting_files", status.waiting},
                         {"oldest_waiting_seconds", status.oldestAge},
                         {"last_result", jsonOf(status.lastResult)},
                         {"failures_today", jsonOf(whole(status.failuresToday))},
                         {"failed_files", jsonOf(whole(status.failedFiles))},
                         {"free_mib", jsonOf(mebibytes(status.freeSpace))},
                         {"least_free_mib", settings.leastFree},
                         {"problems", problems}};
    return object.dump() + "\n";
}

/// A metric, which is left out while its value is unknown.
struct Metric {
    const char* name;
    const char* help;
    Value value;
};

std::vector<Metric> metricsOf(const Status& status, const Settings& settings) {
    const float leastFree = static_cast<float>(settings.leastFree);
    return {
        {"service_running", "Whether a service holds the incoming directory.",
         status.isRunning ? 1 : 0},
        {"waiting_files", "Files in the incoming directory.", whole(status.waiting)},
        {"oldest_waiting_seconds", "Age of the oldest of them, 0 without any.", status.oldestAge},
        {"last_result_timestamp_seconds", "Time of the last result in the journal.",
         timeOf(status.lastResult)},
        {"failures_today", "Failures in the journal since midnight, local time.",
         whole(status.failuresToday)},
        {"failed_files", "Files in the directory of failed files.", whole(status.failedFiles)},
        {"free_bytes", "Free space for results.", bytes(status.freeSpace)},
        {"least_free_bytes", "Free space below which no file is converted.", bytes(leastFree)},
        {"problems", "Things that need a person.", whole(status.problems.size())},
    };
}

/// A label's value as the format wants it.
std::string quoted(const std::string& text) {
    std::string value = "\"";
    for (const char character : printable(text)) {
        if (character == '"' || character == '\\') value += '\\';
        value += character;
    }
    return value + '"';
}

std::string prometheusOf(const Status& status, const Settings& settings) {
    const std::string label = "{properties=" + quoted(settings.properties) + "}";
    TextWriter text;
    for (const Metric& metric : metricsOf(status, settings)) {
        if (!metric.value) continue;
        const std::string name = std::string("zarn_ingest_") + metric.name;
        text << "# HELP " << name << ' ' << metric.help << "\n# TYPE " << name << " gauge\n"
             << name << label << ' ' << *metric.value << '\n';
    }
    return text.str();
}

}  // namespace

std::string formatted(const Status& status, const Settings& settings) {
    switch (settings.format) {
        case StatusFormat::JSON:
            return jsonOf(status, settings);
        case StatusFormat::PROMETHEUS:
            return prometheusOf(status, settings);
        case StatusFormat::TEXT:
            break;
    }
    return textOf(status, settings);
}

}  // namespace zarn::ingest
