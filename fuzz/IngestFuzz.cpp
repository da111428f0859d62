/// Whatever a header text file holds: it is refused for a fault of its own, or gives one FITS file
/// no larger than its header, and nothing else is left.

#include <ace/Log_Msg.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

#include "tests/support/TempDir.h"
#include "zarn-ingest/result/Converter.h"

namespace {

constexpr std::uintmax_t CARD = 80;
constexpr std::uintmax_t BLOCK = 2880;
constexpr std::uintmax_t ADDED_CARDS = 9;  // NAXIS, DATASUM, CHECKSUM, END, five of the moon

std::uintmax_t sizeOfHeader(const std::string& text) {
    std::uintmax_t cards = ADDED_CARDS + 1;
    for (const char c : text) cards += c == '\n' ? 1 : 0;
    return (cards * CARD + BLOCK - 1) / BLOCK * BLOCK;
}

void convert(const std::string& text) {
    static const TempDir dir;
    static const OutputDirectory output(dir / "out", OutputDirectory::Missing::CREATE);
    dir.put("x.hdr", text);
    ConversionOptions options;
    options.checksum = text.size() % 2 == 0;
    options.durable = text.size() % 3 == 0;
    options.resume = options.durable;
    if (text.size() % 5 != 0) options.moon = VEK3;
    {
        Converter converter(options, output);
        // A text that seemed the machine's fault would be tried again for ever.
        if (!converter.convert({dir / "x.hdr", ""}).isFinal()) std::abort();
    }
    for (const auto& entry : std::filesystem::directory_iterator(output.name())) {
        if (entry.path().filename() != "x.fits" || entry.file_size() > sizeOfHeader(text))
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
