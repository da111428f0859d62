#include "zarn-ingest/result/Converter.h"

#include <ace/Log_Msg.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <system_error>

#include "shared/cli/Printable.h"
#include "shared/cli/Reason.h"
#include "shared/files/FileVersion.h"
#include "shared/files/MemoryFile.h"
#include "shared/files/Reading.h"
#include "zarn-ingest/header/Fits.h"
#include "zarn-ingest/header/IngestError.h"

namespace {

constexpr std::size_t CARD_LENGTH = 80;   // [bytes]
constexpr std::size_t FITS_BLOCK = 2880;  // the unit of a file's size [bytes]
constexpr int VERIFIED = 1;               // CFITSIO's word for a checksum that fits
const char NO_AXES[] = "NAXIS   =                    0 / # of axes in frame";

bool isAxis(const std::string& keyword) {
    return keyword == "NAXIS" || keyword == "NAXIS1" || keyword == "NAXIS2";
}

/// Keeps the library's own error lines back: they name files of this process alone, and each look
/// of the service would bring them again.
class QuietLibrary {
public:
    QuietLibrary() : mask_(log().priority_mask(ACE_Log_Msg::PROCESS)) {
        log().priority_mask(mask_ & ~static_cast<u_long>(LM_ERROR), ACE_Log_Msg::PROCESS);
    }
    QuietLibrary(const QuietLibrary&) = delete;
    QuietLibrary& operator=(const QuietLibrary&) = delete;
    ~QuietLibrary() { log().priority_mask(mask_, ACE_Log_Msg::PROCESS); }

private:
    static ACE_Log_Msg& log() { return *ACE_Log_Msg::instance(); }

    u_long mask_;
};

/// Makes sure that the conversion saw the text, whose first card is SIMPLE: it takes a text that it
/// cannot open for an empty one.
void checkHasText(FitsFile* file) {
    int status = 0;
    std::array<char, FLEN_CARD> card = {};
    fits_read_record(file, 1, card.data(), &status);
    if (status != 0 || std::string(card.data()).rfind("SIMPLE", 0) != 0)
        throw FitsFileError("its text cannot be read again", FILE_NOT_OPENED);
}

/// Makes the FITS file of a header text.
void makeFile(const MemoryFile& text, const WorkFile& target, bool checksum) {
    const QuietLibrary quiet;
    FitsHandle file;
    check(ZarnSysFits::hdr2fits(file.receive(), text.path(), target.path()), "cannot be converted");
    checkHasText(file.get());
    int status = 0;
    if (checksum) check(fits_write_chksum(file.get(), &status), "no checksum can be written");
    check(file.close(), "the result cannot be completed");
}

/// Reads a card without trailing blanks; false beyond the last one, END not counted.
bool readCard(FitsFile* file, int number, std::string& card) {
    int count = 0;
    int status = 0;
    std::array<char, FLEN_CARD> found = {};
    check(fits_get_hdrspace(file, &count, nullptr, &status), "the result cannot be read");
    if (number > count) return false;
    check(fits_read_record(file, number, found.data(), &status), "the result cannot be read");
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

/// Whether an error tells that a name leads to nothing that can be opened.
bool isNoFile(int error) { return error == ENOENT || error == ELOOP || error == ENXIO; }

bool canRead(int fd) {
    char byte = 0;
    return ::pread(fd, &byte, sizeof byte, 0) != -1;
}

/// Gives up an input whose result is there and cannot be worked with, for the reason in `errno`.
[[noreturn]] void failExisting(const std::string& result, const std::string& action) {
    throw InputWaits("the result " + result + " cannot be " + action + ": " +
                     std::generic_category().message(errno));
}

}  // namespace

std::string resultName(const std::string& input) {
    const std::string baseName = FileIO(input, true, false).getBaseName();
    const std::string::size_type dot = baseName.rfind('.');
    const bool hasStem = dot != std::string::npos && dot > 0;
    return (hasStem ? baseName.substr(0, dot) : baseName) + ".fits";
}

/// An input's text, and the version of the file that it was read from.
struct Converter::Source {
    explicit Source(const std::string& fileName)
        : name(fileName), version(versionOf(fileName)), text(HeaderText::read(fileName)) {}

    bool isUnchanged() const { return versionOf(name) == version; }

    std::string name;
    std::optional<FileVersion> version;
    HeaderText text;
};

Converter::Converter(const ConversionOptions& options, const OutputDirectory& output)
    : options_(options),
      output_(output),
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
    using Status = Outcome::Status;
    Outcome outcome;
    const auto fails = [&outcome](Status status, const std::string& problem) {
        outcome.status = status;
        outcome.problem = problem;
    };
    try {
        convertOrThrow(input, outcome);
        outcome.status = Status::CONVERTED;
    } catch (const IngestError& error) {
        fails(Status::FAILED, error.what());
        outcome.line = error.line();
    } catch (const InputWaits& error) {
        fails(Status::WAITS, error.what());
    } catch (const std::exception& error) {
        fails(Status::STOPPED, reasonOf(error));
    }
    return outcome;
}

void Converter::leave(const Input& input) { claims_.emplace(resultName(input.name), &input.name); }

void Converter::convertOrThrow(const Input& input, Outcome& outcome) {
    if (input.waits) throw InputWaits(input.problem);
    if (!input.problem.empty()) throw IngestError(input.problem);
    const std::string name = resultName(input.name);
    outcome.result = output_.path(name);
    claim(input, name);
    Source source(input.name);
    HeaderText& text = source.text;
    outcome.cards = text.cards().size();
    if (options_.moon) outcome.moon = moonCards(text, *options_.moon);
    text.append(outcome.moon.lines);
    outcome.losses = text.losses();
    const bool isThere = !isFree(outcome.result);
    const bool isDone = isThere && options_.resume && isKept(text, outcome.result);
    if (isThere && !isDone) checkReplaceable(outcome.result);
    if (options_.dryRun) {
        std::cout << (isDone ? "would keep what " : "would convert ") + printable(input.name) +
                         (isDone ? " gave: " : " to ") + printable(outcome.result) + "\n";
        return;
    }
    if (!isDone) writeOrExplain(source, name);
    outcome.size = std::filesystem::file_size(outcome.result);
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
    const std::string reason = std::generic_category().message(errno);
    if (errno == ENAMETOOLONG)
        throw IngestError("the result cannot be named " + result + ": " + reason);
    throw WorkStops("output directory " + output_.name() + ": " + reason);
}

/// Whether an earlier run made this result of the same text; then it is safe on disk if that is
/// asked for: the run may have ended before.
bool Converter::isKept(const HeaderText& text, const std::string& result) const {
    const Descriptor existing(::open(result.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (existing.get() == -1 && isNoFile(errno)) return false;
    if (existing.get() == -1 || ::fstat(existing.get(), &status) != 0) failExisting(result, "read");
    if (!S_ISREG(status.st_mode)) return false;
    if (!canRead(existing.get())) failExisting(result, "read");
    try {
        verifyFile(descriptorPath(existing.get()), text, options_.checksum);
    } catch (const FitsFileError& error) {
        const bool isTooShort = error.status() == READ_ERROR || error.status() == END_OF_FILE;
        if (!isTooShort) throw InputWaits(error.what());
        return false;
    } catch (const std::runtime_error&) {
        return false;
    }
    if (!options_.durable || options_.dryRun) return true;
    if (::fsync(existing.get()) != 0) failExisting(result, "made safe on disk");
    work_->output().sync();
    return true;
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

/// CFITSIO does not say why a file cannot be made, and forgets some failed writes, so that the
/// result differs from its text: a trial of the same size tells what the machine is to blame for. A
/// header is at fault when it fails twice.
void Converter::writeOrExplain(const Source& source, const std::string& name) const {
    const std::size_t size = source.text.cards().size() * CARD_LENGTH + FITS_BLOCK;
    for (bool again = false;; again = true) {
        try {
            return write(source, name);
        } catch (const FitsFileError& error) {
            work_->checkRoom(size);
            throw InputWaits(error.what());
        } catch (const IngestError&) {
            if (again) throw;
            work_->checkRoom(size);
        }
    }
}

void Converter::write(const Source& source, const std::string& name) const {
    fits_clear_errmsg();
    const MemoryFile text(source.text.text(!options_.checksum));
    WorkFile target(*work_);
    makeFile(text, target, options_.checksum);
    target.open();
    verifyFile(target.openedPath(), source.text, options_.checksum);
    // Opening it gives the result the archive's permission bits.
    FileIO(target.openedPath(), true, false).open(target.openedPath(), true, false);
    if (options_.durable) target.sync();
    if (!source.isUnchanged()) throw InputWaits("changed while it was converted; try again");
    target.putInPlace(name, options_.overwrite);
    if (options_.durable) work_->output().sync();
}
