#include <absl/strings/str_split.h>
#include <ace/Log_Msg.h>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/null_sink.h>
#include <zarnsys/util/StringUtils.h>
#include <zarnsys/util/WexoTime.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "Sides.h"
#include "zarnsys/util/Log.h"

namespace {

const ACE_Time_Value TIME(1176985399, 42);

void addLogging() {
    static const std::string name = "name";
    addSide("log-off/ours", [] {
        logDebug()("Loading file: %s", name.c_str());
        return &name;
    });
    addSide("log-off/ace", [] {
        ACE_DEBUG((LM_DEBUG, "%D DEBUG [ %t ] Loading file: %s\n", name.c_str()));
        return &name;
    });
    const auto logger =
        std::make_shared<spdlog::logger>("bench", std::make_shared<spdlog::sinks::null_sink_mt>());
    addSide("log-off/spdlog", [logger] {
        logger->debug("Loading file: {}", name);
        return &name;
    });
}

std::tm localTime() {
    const std::time_t seconds = TIME.sec();
    std::tm local = {};
    ::localtime_r(&seconds, &local);
    return local;
}

std::string printIso() {
    std::array<char, 64> text = {};
    const std::tm local = localTime();
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &local);
    std::snprintf(text.data() + length, text.size() - length, ".%06ld",
                  static_cast<long>(TIME.usec()));
    return text.data();
}

std::string printUnix() {
    std::array<char, 64> text = {};
    std::snprintf(text.data(), text.size(), "%lld.%06ld", static_cast<long long>(TIME.sec()),
                  static_cast<long>(TIME.usec()));
    return text.data();
}

void addTimes() {
    addSide("time-iso/ours", [] { return WexoTime::asISOTimeString(TIME); });
    addSide("time-iso/c", printIso);
    addSide("time-iso/fmt",
            [] { return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:06}", localTime(), TIME.usec()); });
    addSide("time-unix/ours", [] { return WexoTime::asUnixTimeString(TIME); });
    addSide("time-unix/c", printUnix);
    addSide("time-unix/fmt", [] { return fmt::format("{}.{:06}", TIME.sec(), TIME.usec()); });
}

std::string textOf(int fields) {
    std::string text;
    for (int i = 0; i < fields; ++i) text += "field" + std::to_string(i) + ",";
    return text;
}

void addSplit(const std::string& name, int fields) {
    addSide(name, [text = textOf(fields)] {
        std::vector<std::string> parts;
        ZarnSys::split(text, ",", parts);
        return parts;
    });
}

void addAbslSplit(const std::string& name, int fields) {
    addSide(name, [text = textOf(fields)]() -> std::vector<std::string> {
        return absl::StrSplit(text, absl::ByAnyChar(","), absl::SkipEmpty());
    });
}

std::string transformed(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

void addStrings() {
    addSplit("split-10/ours", 10);
    addAbslSplit("split-10/absl", 10);
    addSplit("split-1000/ours", 1000);
    addAbslSplit("split-1000/absl", 1000);
    // Beyond these sizes malloc gives memory back to the kernel, and the time is that of its
    // return.
    for (const int fields : {10, 100, 1000, 10000})
        addSplit("growth-fields/" + std::to_string(fields), fields);
    const std::string text = "Mixed CASE Text of Some Fifty Characters, As Headers.";
    addSide("lower/ours", [text] { return ZarnSys::lower(text); });
    addSide("lower/transform", [text] { return transformed(text); });
}

}  // namespace

void addHelpers() {
    addLogging();
    addTimes();
    addStrings();
}
