#include "fuzz/Harness.h"

#include <ace/Log_Msg.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <utility>

#include "zarnsys/util/WexoProperties.h"

namespace zarn {

void require(bool isKept, const char* promise) {
    if (isKept) return;
    std::fprintf(stderr, "not kept: %s\n", promise);
    std::abort();
}

void requireWithin(double number, double least, double most) {
    require(number >= least && number <= most, "a value lies in its range");
}

void renewProperties() {
    struct Properties : WexoProperties {
        static void renew() { delete std::exchange(instance_, nullptr); }
    };
    Properties::renew();
}

std::vector<std::string> linesOf(const std::string& text) {
    std::string kept = text;
    kept.erase(std::remove(kept.begin(), kept.end(), '\0'), kept.end());
    std::istringstream stream(kept);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

}  // namespace zarn

/// Log lines are made, as in the programs, and go nowhere.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    std::cout.rdbuf(nullptr);
    std::cerr.rdbuf(nullptr);
    ACE_Log_Msg::instance()->clr_flags(ACE_Log_Msg::STDERR);
    ACE_Log_Msg::instance()->priority_mask(LM_INFO | LM_ERROR, ACE_Log_Msg::PROCESS);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zarn::tryInput(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
