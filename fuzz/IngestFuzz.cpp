/// Whatever a header text file holds. After a '@', a text has several headers: one begins at each
/// '@', as the next character chooses, so that the fuzzer need not find out how.

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "fuzz/Harness.h"
#include "tests/support/TempDir.h"
#include "zarn-ingest/result/Converter.h"
#include "zarnsys/util/StringUtils.h"

namespace zarn {

namespace {

constexpr std::size_t CARD = 80;
constexpr std::size_t BLOCK = 2880;  // the most that a header, or what is added to it, can need

const std::array<std::string, 8> BEGINNINGS = {
    "SIMPLE  = T\nBITPIX  = 8\nNAXIS   = 0\n",
    "XTENSION= 'IMAGE   '\nBITPIX  = -32\nNAXIS   = 2\nNAXIS1  = 100\nNAXIS2  = 100\n",
    "XTENSION= 'BINTABLE'\nBITPIX  = 8\nNAXIS   = 2\nNAXIS1  = 8\nNAXIS2  = 10\nPCOUNT  = 0\n"
    "GCOUNT  = 1\nTFIELDS = 1\nTFORM1  = '1D      '\n",
    "XTENSION= 'TABLE   '\nBITPIX  = 8\nNAXIS   = 2\nNAXIS1  = 10\nNAXIS2  = 1\nPCOUNT  = 0\n"
    "GCOUNT  = 1\nTFIELDS = 1\nTFORM1  = 'I10     '\nTBCOL1  = 1\n",
    "XTENSION= 'FOREIGN '\n",
    "# HDU 1 in x.fits:\n",
    "\n\n",
    "",
};

std::string severalHeaders(const std::string& input) {
    std::vector<std::string> headers;
    ZarnSys::split(input, "@", headers);
    std::string text;
    for (const std::string& header : headers) {
        const auto choice = static_cast<unsigned char>(header.front());
        text += BEGINNINGS[choice % BEGINNINGS.size()] + header.substr(1) + "\n";
        if ((choice & 8U) == 0) text += "END\n";
    }
    return text;
}

/// A bound for a result: a block for each line and for each 80 columns, where a header can begin,
/// and a card for each 20 characters of long texts.
std::uintmax_t mostBytes(const std::string& text) {
    constexpr std::uintmax_t SHORTEST = 20;
    const auto lines = static_cast<std::uintmax_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }));
    return (lines + text.size() / CARD + 3) * BLOCK + text.size() / SHORTEST * CARD;
}

/// The number of headers that follow one another, block by block, to the end of a file.
std::size_t headersIn(const std::string& file) {
    const std::string end = "END" + std::string(CARD - 3, ' ');
    std::size_t headers = 0;
    for (std::size_t begin = 0; begin < file.size(); ++headers) {
        std::size_t card = begin;
        while (file.compare(card, CARD, end) != 0) {
            card += CARD;
            require(card < file.size(), "a result ends with a header");
        }
        begin = (card / BLOCK + 1) * BLOCK;
        const bool isFilled = file.find_first_not_of(' ', card + CARD) >= begin;
        require(begin <= file.size() && isFilled, "a header fills whole blocks");
    }
    return headers;
}

/// Settings that the length of a text chooses.
ingest::ConversionOptions optionsFor(const std::string& text) {
    ingest::ConversionOptions options;
    options.additions.checksum = text.size() % 2 == 0;
    options.durable = text.size() % 3 == 0;
    options.resume = options.durable;
    if (text.size() % 5 != 0) options.additions.moon = VEK3;
    return options;
}

ingest::Outcome convert(const ingest::ConversionOptions& options,
                        const ingest::OutputDirectory& output, const ingest::Input& input) {
    ingest::Converter converter(options, output);
    std::vector<ingest::Conversion> conversions;
    conversions.push_back(converter.begin(input));
    converter.finish(conversions);
    return conversions.front().outcome;
}

}  // namespace

/// A text is refused for a fault of its own, or gives one FITS file of as many headers as are told
/// of, with nothing between and after them, and no larger than its text asks for; nothing else is
/// left.
void tryInput(const std::string& input) {
    static const TempDir dir;
    static const ingest::OutputDirectory output(dir / "out",
                                                ingest::OutputDirectory::Missing::CREATE);
    const std::string text = input.rfind('@', 0) == 0 ? severalHeaders(input) : input;
    dir.put("x.hdr", text);
    const ingest::Outcome outcome = convert(optionsFor(text), output, {dir / "x.hdr", ""});
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
