#include "zarn-ingest/header/lines/HeaderFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <system_error>

#include "shared/cli/BeginsWith.h"
#include "shared/files/Reading.h"
#include "zarn-ingest/header/IngestError.h"
#include "zarn-ingest/header/lines/Columns.h"

namespace zarn::ingest {

namespace {

constexpr std::uintmax_t MAX_BYTES = 16U << 20U;  // far above any header; keeps memory bounded
constexpr std::size_t FITS_BLOCK = 2880;          // the unit of a FITS file's size [bytes]

// One character in so many, and a file is no text: control characters; these and non-ASCII ones.
constexpr std::size_t CONTROL_SHARE = 20;
constexpr std::size_t UNPRINTABLE_SHARE = 3;

bool isPlain(char c) { return (c >= ' ' && c <= '~') || c == '\n'; }

bool isBinary(const std::string& bytes) {
    // Nearly every text ends here.
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return isPlain(c); })) return false;
    std::size_t control = 0;
    std::size_t unprintable = 0;
    for (const char c : bytes) {
        if (isPlain(c) || std::isspace(static_cast<unsigned char>(c)) != 0) continue;
        ++unprintable;
        if (std::iscntrl(static_cast<unsigned char>(c)) != 0) ++control;
    }
    return bytes.find('\0') != std::string::npos || control > bytes.size() / CONTROL_SHARE ||
           unprintable > bytes.size() / UNPRINTABLE_SHARE;
}

/// Whether cards that stand in a row say that data follow.
bool promisesData(const std::string& bytes) {
    const std::string naxis = "NAXIS   =";
    for (std::size_t at = 0; at < bytes.size(); at += CARD_LENGTH) {
        if (bytes.compare(at, naxis.size(), naxis) != 0) continue;
        const std::string card = bytes.substr(at, CARD_LENGTH);
        const std::string value = card.substr(0, card.find('/'));
        if (value.find_first_of("123456789") != std::string::npos) return true;
    }
    return false;
}

/// Whether the bytes are a FITS file, rather than the header of one, whose cards stand in a row,
/// too.
bool isFits(const std::string& bytes) {
    const bool begins = beginsWith(bytes, "SIMPLE  =") || beginsWith(bytes, "XTENSION=");
    if (!begins || bytes.find_first_of("\r\n") < 2 * CARD_LENGTH) return false;
    return isBinary(bytes) || (bytes.size() % FITS_BLOCK == 0 && !promisesData(bytes));
}

// Errors of a name that leads to no file; any other may pass.
constexpr std::errc NO_FILE[] = {std::errc::no_such_file_or_directory, std::errc::not_a_directory,
                                 std::errc::filename_too_long,
                                 std::errc::too_many_symbolic_link_levels};

[[noreturn]] void failReading(const std::error_code& error) {
    const std::string problem = "cannot be read: " + error.message();
    const auto matches = [&error](std::errc condition) { return error == condition; };
    if (std::any_of(std::begin(NO_FILE), std::end(NO_FILE), matches)) throw IngestError(problem);
    throw InputWaits(problem);
}

/// Looks before anything is opened: opening a device may do something to it.
void refuseOtherThanFile(const std::string& fileName) {
    struct stat status = {};
    if (::stat(fileName.c_str(), &status) != 0) failReading({errno, std::generic_category()});
    if (S_ISDIR(status.st_mode)) throw IngestError("is a directory");
    if (!S_ISREG(status.st_mode)) throw IngestError("is not a regular file");
    if (static_cast<std::uintmax_t>(status.st_size) > MAX_BYTES)
        throw IngestError("is larger than " + std::to_string(MAX_BYTES >> 20U) +
                          " MiB, not a header text file");
}

}  // namespace

HeaderFile readHeaderFile(const std::string& fileName) {
    refuseOtherThanFile(fileName);
    try {
        const Descriptor file = openForReading(fileName);
        HeaderFile result = {"", versionOf(file.get())};
        while (readChunk(file.get(), result.bytes)) {
        }
        return result;
    } catch (const std::system_error& error) {
        failReading(error.code());
    }
}

void refuseOtherThanText(const std::string& bytes) {
    if (bytes.empty()) throw IngestError("is empty");
    if (isFits(bytes)) throw IngestError("is a FITS file, not a header text file");
    if (isBinary(bytes)) throw IngestError("is a binary file, not a header text file");
}

}  // namespace zarn::ingest
