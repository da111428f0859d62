#include "fuzz/Conversion.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <vector>

#include "fuzz/Harness.h"
#include "tests/support/TempDir.h"
#include "zarn-ingest/result/Converter.h"

namespace zarn {

namespace {

constexpr std::size_t CARD = 80;
constexpr std::size_t BLOCK = 2880;  // the most that a header, or what is added to it, can need

/// A bound for a result: a block for each line and for each 80 columns, where a header can begin,
/// and a card for each 20 characters of long texts.
std::uintmax_t mostBytes(const std::string& text) {
    constexpr std::uintmax_t SHORTEST = 20;
    const auto lines = static_cast<std::uintmax_t>(std::count(text.begin(), text.end(), '\n'));
    return (lines + text.size() / CARD + 3) * BLOCK + text.size() / SHORTEST * CARD;
}

/// The number of headers that follow one another, block by block, to the end of a file.
std::size_t headersIn(const std::string& file) {
    const std::string end = "END" + std::string(CARD - 3, ' ');
    std::size_t headers = 0;
    std::size_t at = 0;
    bool inHeader = false;
    for (; at + CARD <= file.size(); at += CARD) {
        inHeader = true;
        if (file.compare(at, CARD, end) != 0) continue;
        ++headers;
        inHeader = false;
        const std::size_t next = (at / BLOCK + 1) * BLOCK;
        const bool isFilled = file.find_first_not_of(' ', at + CARD) >= next;
        require(next <= file.size() && isFilled, "a header fills whole blocks");
        at = next - CARD;
    }
    require(at == file.size() && !inHeader, "a result ends with a header");
    return headers;
}

}  // namespace

void convert(const std::string& text) {
    static const TempDir dir;
    static const ingest::OutputDirectory output(dir / "out",
                                                ingest::OutputDirectory::Missing::CREATE);
    dir.put("x.hdr", text);
    ingest::ConversionOptions options;
    options.additions.checksum = text.size() % 2 == 0;
    options.durable = text.size() % 3 == 0;
    options.resume = options.durable;
    if (text.size() % 5 != 0) options.additions.moon = VEK3;
    const ingest::Input input = {dir / "x.hdr", ""};
    ingest::Outcome outcome;
    {
        ingest::Converter converter(options, output);
        std::vector<ingest::Conversion> conversions;
        conversions.push_back(converter.begin(input));
        converter.finish(conversions);
        outcome = conversions.front().outcome;
    }
    require(outcome.isFinal(), "no text seems the machine's fault, to be tried for ever");
    std::size_t results = 0;
    for (const auto& entry : std::filesystem::directory_iterator(output.name())) {
        ++results;
        require(entry.path().filename() == "x.fits", "the result has its name");
        require(entry.file_size() <= mostBytes(text), "no result is larger than its headers");
        require(headersIn(dir.get("out/x.fits")) == outcome.hdus, "a header for each HDU");
        std::filesystem::remove(entry.path());
    }
    require(results == (outcome.converted() ? 1U : 0U), "there is a result if the outcome says so");
}

}  // namespace zarn
