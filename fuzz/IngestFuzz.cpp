/// Whatever a header text file holds: it is refused for a fault of its own, or gives one FITS file
/// no larger than its headers, and nothing else is left.

#include <ace/Log_Msg.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "tests/support/TempDir.h"
#include "zarn-ingest/result/Converter.h"

namespace zarn::ingest {

namespace {

constexpr std::uintmax_t BLOCK = 2880;  // the most that a header, or what is added to it, can need

/// A bound for a result: a block for each line and for each 80 columns, where a header can begin,
/// and a card for each 20 characters of long texts.
std::uintmax_t mostBytes(const std::string& text) {
    constexpr std::uintmax_t CARD = 80;
    constexpr std::uintmax_t SHORTEST = 20;
    const auto lines = static_cast<std::uintmax_t>(std::count(text.begin(), text.end(), '\n'));
    return (lines + text.size() / CARD + 3) * BLOCK + text.size() / SHORTEST * CARD;
}

void convert(const std::string& text) {
    static const TempDir dir;
    static const OutputDirectory output(dir / "out", OutputDirectory::Missing::CREATE);
    dir.put("x.hdr", text);
    ConversionOptions options;
    options.additions.checksum = text.size() % 2 == 0;
    options.durable = text.size() % 3 == 0;
    options.resume = options.durable;
    if (text.size() % 5 != 0) options.additions.moon = VEK3;
    {
        Converter converter(options, output);
        // A text that seemed the machine's fault would be tried again for ever.
        std::vector<Conversion> conversions;
        conversions.push_back(converter.begin({dir / "x.hdr", ""}));
        converter.finish(conversions);
        if (!conversions.front().outcome.isFinal()) std::abort();
    }
    for (const auto& entry : std::filesystem::directory_iterator(output.name())) {
        if (entry.path().filename() != "x.fits" || entry.file_size() > mostBytes(text))
            std::abort();
        std::filesystem::remove(entry.path());
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    std::cerr.rdbuf(nullptr);
    ACE_Log_Msg::instance()->priority_mask(0, ACE_Log_Msg::PROCESS);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    convert(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}

}  // namespace zarn::ingest
