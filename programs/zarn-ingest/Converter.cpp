#include "Converter.h"

#include <sys/stat.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/ZarnSysEx.h>

#include <array>
#include <iostream>

#include "Fits.h"
#include "HeaderText.h"
#include "IngestError.h"

namespace {

constexpr int VERIFIED = 1;  // CFITSIO's word for a checksum that fits

bool isAxis(const std::string& keyword) {
    return keyword == "NAXIS" || keyword == "NAXIS1" || keyword == "NAXIS2";
}

bool isChecksum(const std::string& keyword) {
    return keyword == "CHECKSUM" || keyword == "DATASUM";
}

[[noreturn]] void failFits(const std::string& action, int status) {
    std::array<char, FLEN_ERRMSG> detail = {};
    fits_read_errmsg(detail.data());
    const std::string reason = detail.front() == '\0' ? "" : std::string("; ") + detail.data();
    throw IngestError(action + " (" + statusText(status) + reason + ")");
}

void check(int status, const std::string& action) {
    if (status != 0) failFits(action, status);
}

/// Makes the FITS file under its temporary name.
void makeFile(const std::string& source, const TemporaryFile& target, bool checksum) {
    FitsHandle file;
    check(ZarnSysFits::hdr2fits(file.receive(), source, target.fitsPath()), "cannot be converted");
    int status = 0;
    if (checksum) check(fits_write_chksum(file.get(), &status), "no checksum can be written");
    check(file.close(), "the result cannot be completed");
}

/// Compares the cards of the file with those of the text, the axes and new checksums left out.
void compareCards(FitsFile* file, const HeaderText& text, bool checksum) {
    int status = 0;
    int number = 0;
    std::array<char, FLEN_CARD> found = {};
    const auto isOurs = [checksum](const std::string& keyword) {
        return isAxis(keyword) || (checksum && isChecksum(keyword));
    };
    for (const Card& card : text.cards()) {
        if (isOurs(card.keyword)) {
            if (card.keyword == "NAXIS" || isChecksum(card.keyword)) ++number;
            continue;
        }
        fits_read_record(file, ++number, found.data(), &status);
        if (card.text.empty() && status != 0) break;  // blank cards at the end do not count
        if (status != 0 || card.text != found.data())
            throw IngestError("the result differs from this card: \"" + card.text + "\"",
                              card.line);
    }
}

/// Opens the finished file as any reader would.
void verifyFile(const TemporaryFile& target, const HeaderText& text, bool checksum) {
    FitsHandle file;
    check(ZarnSysFits::openFitsFile(file.get(), target.fitsPath(), READONLY),
          "the result cannot be opened");
    compareCards(file.get(), text, checksum);
    int status = 0;
    int dataFits = 0;
    int headerFits = 0;
    if (checksum) {
        check(fits_verify_chksum(file.get(), &dataFits, &headerFits, &status),
              "the checksum cannot be verified");
        if (dataFits != VERIFIED || headerFits != VERIFIED)
            throw IngestError("the checksum of the result does not fit");
    }
    check(file.close(), "the result cannot be closed");
}

}  // namespace

std::string resultName(const std::string& input) {
    const std::string baseName = FileIO(input, true, false).getBaseName();
    const std::string::size_type dot = baseName.rfind('.');
    const bool hasStem = dot != std::string::npos && dot > 0;
    return (hasStem ? baseName.substr(0, dot) : baseName) + ".fits";
}

Converter::Converter(const IngestOptions& options, std::optional<OutputDirectory>& directory,
                     const std::vector<Input>& inputs, Reporter& reporter)
    : options_(options), directory_(directory), reporter_(reporter) {
    if (!options.overwrite) return;
    for (const Input& input : inputs) {
        struct stat status = {};
        if (::stat(input.name.c_str(), &status) == 0)
            sources_.emplace(status.st_dev, status.st_ino);
    }
}

void Converter::convert(const Input& input) {
    try {
        convertOrThrow(input);
    } catch (const IngestError& error) {
        reporter_.failed(input.name, error);
    } catch (ZarnSysEx& error) {
        reporter_.failed(input.name, IngestError(error.what()));
    } catch (const std::exception& error) {
        reporter_.failed(input.name, IngestError(error.what()));
    }
}

void Converter::convertOrThrow(const Input& input) {
    if (!input.problem.empty()) throw IngestError(input.problem);
    const std::string result = resultName(input.name);
    claim(input, result);
    const HeaderText text = HeaderText::read(input.name);
    checkExisting(result);
    if (!options_.dryRun) write(text, result);
    const std::string resultPath =
        directory_ ? directory_->path(result) : options_.outputDir + "/" + result;
    if (options_.dryRun)
        std::cout << "would convert " + printable(input.name) + " to " + printable(resultPath) +
                         "\n";
    reporter_.converted(input.name, text.losses(), options_.checksum, resultPath);
}

void Converter::claim(const Input& input, const std::string& result) {
    const auto [earlier, isNew] = claims_.emplace(result, &input.name);
    if (!isNew)
        throw IngestError("would give the same result " + result + " as " + *earlier->second);
}

void Converter::checkExisting(const std::string& result) {
    if (!directory_) return;
    struct stat status = {};
    if (::lstat(directory_->path(result).c_str(), &status) != 0) return;
    const std::string path = directory_->path(result);
    if (S_ISDIR(status.st_mode)) throw IngestError("the result's name " + path + " is a directory");
    if (!options_.overwrite)
        throw IngestError("the result " + path + " exists already (--force replaces it)");
    if (sources_.count({status.st_dev, status.st_ino}) > 0)
        throw IngestError("the result " + path + " would replace a source of this run");
}

void Converter::write(const HeaderText& text, const std::string& result) {
    fits_clear_errmsg();
    // What was examined is converted, even if the input changes meanwhile.
    TemporaryFile source(*directory_);
    FileIO(source.path(), false, true).write(text.text());
    TemporaryFile target(*directory_);
    makeFile(source.path(), target, options_.checksum);
    verifyFile(target, text, options_.checksum);
    FileIO file(target.path(), true, false);
    file.open(target.path(), true, false);  // gives the result the archive's permission bits
    target.putInPlace(result, options_.overwrite);
}
