#include "zarn-ingest/result/Converter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>

#include <cerrno>
#include <filesystem>
#include <iostream>
#include <system_error>

#include "shared/cli/Printable.h"
#include "shared/cli/Reason.h"
#include "shared/files/FileVersion.h"
#include "shared/files/Reading.h"
#include "zarn-ingest/header/Fits.h"
#include "zarn-ingest/header/IngestError.h"
#include "zarn-ingest/result/FitsResult.h"

namespace zarn::ingest {

namespace {

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
    Source(const std::string& fileName, const ReadingOptions& options)
        : name(fileName), version(versionOf(fileName)), text(HeaderText::read(fileName, options)) {}

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
    if (!options_.force) return;
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
        outcome.fitsStatus = error.status();
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
    Source source(input.name, options_.reading);
    HeaderText& text = source.text;
    outcome.cards = text.cardCount();
    outcome.hdus = text.headers().size();
    outcome.repairs = text.repairs();
    if (options_.checksum) text.dropChecksums();
    outcome.notes = text.notes();
    if (options_.moon) outcome.moon = moonCards(text, *options_.moon);
    text.append(outcome.moon.lines);
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
        verifyFitsFile(text, descriptorPath(existing.get()), options_.checksum);
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
    if (!options_.force)
        throw IngestError("the result " + result + " exists already (--force replaces it)");
    if (sources_.count({status.st_dev, status.st_ino}) > 0)
        throw IngestError("the result " + result + " would replace a source of this run");
}

/// CFITSIO does not say why a file cannot be made, and forgets some failed writes, so that the
/// result differs from its text: a trial of the same size tells what the machine is to blame for. A
/// header is at fault when it fails twice.
void Converter::writeOrExplain(const Source& source, const std::string& name) const {
    const std::size_t size = source.text.fileSize();
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
    WorkFile target(*work_);
    makeFitsFile(source.text, target.path(), options_.checksum);
    target.open();
    verifyFitsFile(source.text, target.openedPath(), options_.checksum);
    // Opening it gives the result the archive's permission bits.
    FileIO(target.openedPath(), true, false).open(target.openedPath(), true, false);
    if (options_.durable) target.sync();
    if (!source.isUnchanged()) throw InputWaits("changed while it was converted; try again");
    target.putInPlace(name, options_.force);
    if (options_.durable) work_->output().sync();
}

}  // namespace zarn::ingest
