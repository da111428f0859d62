#include "zarn-ingest/result/Converter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <system_error>

#include "shared/cli/Printable.h"
#include "shared/cli/Reason.h"
#include "shared/files/Reading.h"
#include "shared/files/SystemError.h"
#include "zarn-ingest/header/Fits.h"
#include "zarn-ingest/header/IngestError.h"
#include "zarn-ingest/header/lines/HeaderFile.h"
#include "zarn-ingest/result/FitsResult.h"

namespace zarn::ingest {

namespace {

/// Runs a step of a conversion; the outcome says that it succeeded, or why it did not.
template <typename Step>
void judge(Outcome& outcome, Step step) {
    using Status = Outcome::Status;
    const auto fails = [&outcome](Status status, const std::string& problem) {
        outcome.status = status;
        outcome.problem = problem;
    };
    try {
        step();
        outcome.status = Status::CONVERTED;
    } catch (const IngestError& error) {
        fails(Status::FAILED, error.what());
        outcome.line = error.line();
        outcome.fitsStatus = error.status();
    } catch (const InputWaits& error) {
        fails(Status::WAITS, error.what());
    } catch (const std::exception& error) {
        fails(Status::STOPPED, reasonOf(error));
    }
}

/// Whether a conversion has come so far that its result can be lost.
bool hasResult(const Conversion& one) {
    return one.outcome.converted() && (one.isPending() || one.isKept);
}

/// Runs a step that all results of a group have in common, if there are any.
template <typename Step>
void judgeAll(std::vector<Conversion>& conversions, Step step) {
    if (std::none_of(conversions.begin(), conversions.end(), hasResult)) return;
    Outcome common;
    judge(common, step);
    if (common.converted()) return;
    for (Conversion& one : conversions) {
        if (!hasResult(one)) continue;
        one.outcome.status = common.status;
        one.outcome.problem = common.problem;
    }
}

}  // namespace

std::string resultName(const std::string& input) {
    const std::string baseName = FileIO(input, true, false).getBaseName();
    const std::string::size_type dot = baseName.rfind('.');
    const bool hasStem = dot != std::string::npos && dot > 0;
    return (hasStem ? baseName.substr(0, dot) : baseName) + RESULT_END;
}

Converter::Converter(const ConversionOptions& options, const OutputDirectory& output)
    : options_(options),
      output_(output),
      work_(options.dryRun ? nullptr : std::make_unique<WorkDirectory>(output)) {}

void Converter::beginBatch(const std::vector<Input>& inputs,
                           const std::vector<std::string>& sources) {
    claims_.clear();
    sources_.clear();
    if (!options_.force) return;
    for (const Input& input : inputs) protect(input.name);
    for (const std::string& source : sources) protect(source);
}

Conversion Converter::begin(const Input& input) {
    Conversion conversion(input);
    judge(conversion.outcome, [&] { beginOrThrow(input, conversion); });
    // Another try may follow, which must not meet the claim of this one.
    if (conversion.outcome.status == Outcome::Status::STOPPED) claims_.erase(conversion.name);
    return conversion;
}

void Converter::finish(std::vector<Conversion>& conversions) {
    const bool durable = options_.durable && !options_.dryRun;
    if (durable) judgeAll(conversions, [&] { syncFiles(conversions); });
    for (Conversion& one : conversions) {
        if (one.isPending() && one.outcome.converted())
            judge(one.outcome, [this, &one] { place(one); });
    }
    if (durable) judgeAll(conversions, [this] { work_->output().sync(); });
    for (Conversion& one : conversions) {
        one.file.reset();
        one.isKept = false;
    }
}

void Converter::leave(const Input& input) { claims_.emplace(resultName(input.name), &input.name); }

void Converter::beginOrThrow(const Input& input, Conversion& conversion) {
    Outcome& outcome = conversion.outcome;
    if (input.waits) throw InputWaits(input.problem);
    if (!input.problem.empty()) throw IngestError(input.problem);
    conversion.name = resultName(input.name);
    outcome.result = output_.path(conversion.name);
    claim(input, conversion.name);
    const HeaderFile source = readHeaderFile(input.name);
    conversion.version = source.version;
    HeaderText text(source.bytes, options_.reading);
    outcome.cards = text.cardCount();
    outcome.hdus = text.headers().size();
    outcome.repairs = text.repairs();
    outcome.moon = complete(text, options_.additions);
    outcome.notes = text.notes();
    const bool isThere = !isFree(outcome.result);
    const bool checksum = options_.additions.checksum;
    conversion.isKept =
        isThere && options_.resume && differenceOf(text, outcome.result, checksum).empty();
    if (isThere && !conversion.isKept) checkReplaceable(outcome.result);
    if (options_.dryRun) {
        std::cout << (conversion.isKept ? "would keep what " : "would convert ") +
                         printable(input.name) + (conversion.isKept ? " gave: " : " to ") +
                         printable(outcome.result) + "\n";
        return;
    }
    if (conversion.isKept) {
        outcome.size = std::filesystem::file_size(outcome.result);
    } else {
        conversion.file = writeOrExplain(text);
        outcome.size = conversion.file->size();
    }
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

void Converter::checkReplaceable(const std::string& result) const {
    struct stat status = {};
    if (::lstat(result.c_str(), &status) != 0) return;
    if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode))
        throw IngestError("the result's name " + result + " belongs to something else than a file");
    if (!options_.force)
        throw IngestError("the result " + result + " exists already (--force replaces it)");
    if (sources_.count({status.st_dev, status.st_ino}) > 0)
        throw IngestError("the result " + result + " would replace a source of this run");
}

/// CFITSIO does not say why a file cannot be made, and forgets some failed writes, so that the
/// result differs from its text: a trial of the same size tells what the machine is to blame for. A
/// header is at fault when it fails twice.
std::unique_ptr<WorkFile> Converter::writeOrExplain(const HeaderText& text) {
    for (bool again = false;; again = true) {
        try {
            return write(text);
        } catch (const FitsFileError& error) {
            work_->checkRoom(text.fileSize());
            throw InputWaits(error.what());
        } catch (const IngestError&) {
            if (again) throw;
            work_->checkRoom(text.fileSize());
        }
    }
}

std::unique_ptr<WorkFile> Converter::write(const HeaderText& text) {
    fits_clear_errmsg();
    auto file = std::make_unique<WorkFile>(*work_);
    makeFitsFile(text, memory_, file->path(), options_.additions.checksum);
    file->open();
    try {
        verifyFitsFile(text, file->fd(), options_.additions.checksum);
    } catch (const std::system_error& error) {
        throw WorkStops("no result can be read again in " + output_.name() + ": " +
                        error.code().message());
    }
    return file;
}

/// Makes sure of what the files hold. One alone need not wait for other programs' files.
void Converter::syncFiles(const std::vector<Conversion>& conversions) const {
    const auto count = std::count_if(conversions.begin(), conversions.end(), hasResult);
    const auto first = std::find_if(conversions.begin(), conversions.end(), hasResult);
    if (count == 1 && first->isPending()) return first->file->sync();
    work_->sync();
}

void Converter::place(const Conversion& conversion) const {
    if (!(versionOf(conversion.input.name) == conversion.version))
        throw InputWaits("changed while it was converted; try again");
    conversion.file->putInPlace(conversion.name, options_.force);
}

}  // namespace zarn::ingest
