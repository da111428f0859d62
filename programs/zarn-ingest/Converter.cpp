#include "Converter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/Utils.h>
#include <zarnsys/util/ZarnSysEx.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <system_error>

#include "Fits.h"
#include "IngestError.h"
#include "Moving.h"
#include "Printable.h"
#include "Reading.h"

namespace {

constexpr int VERIFIED = 1;  // CFITSIO's word for a checksum that fits
const char NO_AXES[] = "NAXIS   =                    0 / # of axes in frame";
constexpr float FULL_BELOW = 0.25F;  // a file system with less room counts as full [MiB]

bool isAxis(const std::string& keyword) {
    return keyword == "NAXIS" || keyword == "NAXIS1" || keyword == "NAXIS2";
}

void check(int status, const std::string& action) {
    if (status == 0) return;
    std::array<char, FLEN_ERRMSG> detail = {};
    fits_read_errmsg(detail.data());
    const std::string reason = detail.front() == '\0' ? "" : std::string("; ") + detail.data();
    throw IngestError(action + " (" + statusText(status) + reason + ")");
}

/// Makes the FITS file of a text file.
void makeFile(const WorkFile& text, const WorkFile& target, bool checksum) {
    FitsHandle file;
    check(ZarnSysFits::hdr2fits(file.receive(), text.path(), target.fitsPath()),
          "cannot be converted");
    int status = 0;
    if (checksum) check(fits_write_chksum(file.get(), &status), "no checksum can be written");
    check(file.close(), "the result cannot be completed");
}

/// Reads a card without trailing blanks; false beyond the last one, END not counted.
bool readCard(FitsFile* file, int number, std::string& card) {
    int count = 0;
    int status = 0;
    std::array<char, FLEN_CARD> found = {};
    fits_get_hdrspace(file, &count, nullptr, &status);
    if (number > count || fits_read_record(file, number, found.data(), &status) != 0) return false;
    card = found.data();
    return true;
}

/// Makes sure that a file holds the text's cards, with the conversion's NAXIS, no axes, renewed
/// checksums at the end, and nothing else.
void compareCards(FitsFile* file, const HeaderText& text, bool checksum) {
    int number = 0;
    bool naxis = false;
    std::string found;
    for (const Card& card : text.cards()) {
        const bool isNaxis = card.keyword == "NAXIS";
        if (isAxis(card.keyword) && !isNaxis) continue;
        if (checksum && isChecksum(card.keyword)) continue;
        naxis = naxis || isNaxis;
        const bool isThere = readCard(file, ++number, found);
        if (!isThere && card.text.empty()) break;  // blank cards at the end do not count
        if (!isThere || found != (isNaxis ? NO_AXES : card.text))
            throw IngestError("the result differs from this card: \"" + card.text + "\"",
                              card.number);
    }
    while (readCard(file, ++number, found)) {
        const bool added = (!naxis && found == NO_AXES) ||
                           (checksum && isChecksum(found.substr(0, found.find_first_of(" ="))));
        if (!added) throw IngestError("the result has another card: \"" + found + "\"");
    }
    int hdus = 0;
    int status = 0;
    check(fits_get_num_hdus(file, &hdus, &status), "the result cannot be read");
    if (hdus != 1) throw IngestError("the result holds more than a header");
}

/// Opens a file as any reader would and makes sure that it came from this text.
void verifyFile(const std::string& fitsPath, const HeaderText& text, bool checksum) {
    FitsHandle file;
    check(ZarnSysFits::openFitsFile(file.get(), fitsPath, READONLY), "the result cannot be opened");
    compareCards(file.get(), text, checksum);
    int status = 0;
    int dataFits = VERIFIED;
    int headerFits = VERIFIED;
    if (checksum) fits_verify_chksum(file.get(), &dataFits, &headerFits, &status);
    check(status, "the checksum cannot be verified");
    if (dataFits != VERIFIED || headerFits != VERIFIED)
        throw IngestError("the checksum of the result does not fit");
    check(file.close(), "the result cannot be closed");
}

}  // namespace

std::string resultName(const std::string& input) {
    const std::string baseName = FileIO(input, true, false).getBaseName();
    const std::string::size_type dot = baseName.rfind('.');
    const bool hasStem = dot != std::string::npos && dot > 0;
    return (hasStem ? baseName.substr(0, dot) : baseName) + ".fits";
}

Converter::Converter(const ConversionOptions& options, const OutputDirectory& output,
                     Reporter& reporter)
    : options_(options),
      output_(output),
      reporter_(reporter),
      work_(options.dryRun ? nullptr : std::make_unique<WorkDirectory>(output)) {}

void Converter::beginBatch(const std::vector<Input>& inputs,
                           const std::vector<std::string>& sources) {
    claims_.clear();
    sources_.clear();
    if (!options_.overwrite) return;
    for (const Input& input : inputs) protect(input.name);
    for (const std::string& source : sources) protect(source);
}

Outcome Converter::convert(const Input& input) {
    Outcome outcome;
    try {
        convertOrThrow(input, outcome);
        outcome.converted = true;
    } catch (const IngestError& error) {
        reporter_.failed(input.name, error);
    } catch (ZarnSysEx& error) {
        reporter_.failed(input.name, IngestError(error.what()));
    } catch (const std::exception& error) {
        reporter_.failed(input.name, IngestError(error.what()));
    }
    return outcome;
}

void Converter::leave(const Input& input) { claims_.emplace(resultName(input.name), &input.name); }

void Converter::convertOrThrow(const Input& input, Outcome& outcome) {
    if (!input.problem.empty()) throw IngestError(input.problem);
    const std::string name = resultName(input.name);
    outcome.result = output_.path(name);
    claim(input, name);
    HeaderText text = HeaderText::read(input.name);
    outcome.cards = text.cards().size();
    const MoonCards moon = options_.moon ? moonCards(text, *options_.moon) : MoonCards();
    text.append(moon.lines);
    const bool isThere = !isFree(outcome.result);
    const bool isDone = isThere && options_.resume && isFrom(text, outcome.result);
    if (isThere && !isDone) checkReplaceable(outcome.result);
    if (options_.dryRun) {
        std::cout << (isDone ? "would keep what " : "would convert ") + printable(input.name) +
                         (isDone ? " gave: " : " to ") + printable(outcome.result) + "\n";
    } else if (!isDone) {
        writeOrExplain(text, outcome.result);
    } else if (options_.durable) {
        syncToDisk(outcome.result);  // the run that made it may have ended before
        syncToDisk(output_.name());
    }
    if (!options_.dryRun) outcome.size = std::filesystem::file_size(outcome.result);
    reporter_.converted(input.name, text.losses(), moon, options_.checksum, outcome.result);
}

void Converter::protect(const std::string& source) {
    struct stat status = {};
    if (::stat(source.c_str(), &status) == 0) sources_.emplace(status.st_dev, status.st_ino);
    if (::lstat(source.c_str(), &status) == 0) sources_.emplace(status.st_dev, status.st_ino);
}

void Converter::claim(const Input& input, const std::string& name) {
    const auto [earlier, isNew] = claims_.emplace(name, &input.name);
    if (!isNew) throw IngestError("would give the same result " + name + " as " + *earlier->second);
}

bool Converter::isFree(const std::string& result) const {
    struct stat status = {};
    if (::lstat(result.c_str(), &status) == 0) return false;
    if (errno == ENOENT) return true;
    throw IngestError("the result cannot be named " + result + ": " +
                      std::generic_category().message(errno));
}

bool Converter::isFrom(const HeaderText& text, const std::string& result) const {
    const Descriptor existing(::open(result.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (::fstat(existing.get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    try {
        // a name that CFITSIO takes as it is
        verifyFile("/proc/self/fd/" + std::to_string(existing.get()), text, options_.checksum);
        return true;
    } catch (const IngestError&) {
        return false;
    }
}

void Converter::checkReplaceable(const std::string& result) const {
    struct stat status = {};
    if (::lstat(result.c_str(), &status) != 0) return;
    if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode))
        throw IngestError("the result's name " + result + " belongs to something else than a file");
    if (!options_.overwrite)
        throw IngestError("the result " + result + " exists already (--force replaces it)");
    if (sources_.count({status.st_dev, status.st_ino}) > 0)
        throw IngestError("the result " + result + " would replace a source of this run");
}

/// CFITSIO and partial writes do not say when it is the disk that is full.
void Converter::writeOrExplain(const HeaderText& text, const std::string& result) const {
    try {
        write(text, result);
    } catch (const IngestError& error) {
        throw IngestError(error.what() + diskFull(), error.line());
    } catch (ZarnSysEx& error) {
        throw IngestError(error.what() + diskFull());
    }
}

void Converter::write(const HeaderText& text, const std::string& result) const {
    fits_clear_errmsg();
    // What was examined is converted, even if the input changes meanwhile.
    const WorkFile source(*work_, "header.hdr");
    FileIO(source.path(), false, true).write(text.text(!options_.checksum));
    const WorkFile target(*work_, "result.fits");
    makeFile(source, target, options_.checksum);
    verifyFile(target.fitsPath(), text, options_.checksum);
    FileIO file(target.path(), true, false);
    file.open(target.path(), true, false);  // gives the result the archive's permission bits
    if (options_.durable) syncToDisk(target.path());
    target.putInPlace(result, options_.overwrite);
    if (options_.durable) syncToDisk(output_.name());
}

std::string Converter::diskFull() const {
    float total = 0;
    float available = 0;
    const bool known = ZarnSys::getFilesystemInfo(output_.name().c_str(), &total, &available) == 0;
    return known && available < FULL_BELOW ? "; the file system of the results is full" : "";
}
