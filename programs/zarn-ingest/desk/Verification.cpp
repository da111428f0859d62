#include "zarn-ingest/desk/Verification.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>

#include "shared/cli/Printable.h"
#include "shared/files/SystemError.h"
#include "zarn-ingest/header/IngestError.h"
#include "zarn-ingest/header/lines/HeaderFile.h"
#include "zarn-ingest/result/Directory.h"
#include "zarn-ingest/run/Conversion.h"
#include "zarn-ingest/run/Moving.h"
#include "zarn-ingest/run/ServiceDirectories.h"

namespace zarn::ingest {

namespace {

namespace fs = std::filesystem;

std::string nameOf(const std::string& path) { return fs::path(path).filename(); }

/// The names in a directory, without those of directories.
std::vector<std::string> namesIn(const std::string& directory) {
    static_cast<void>(Directory(directory));  // says why it cannot be listed
    std::vector<std::string> names;
    std::error_code ignored;  // a link that leads nowhere is no directory
    for (const auto& entry : fs::directory_iterator(directory)) {
        if (!entry.is_directory(ignored)) names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> resultsIn(const std::string& directory) {
    std::vector<std::string> names = namesIn(directory);
    const auto isOther = [](const std::string& name) {
        return fs::path(name).extension() != RESULT_END;
    };
    names.erase(std::remove_if(names.begin(), names.end(), isOther), names.end());
    return names;
}

/// Whether a name leads to something, a link perhaps.
bool isThere(const std::string& path) {
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0;
}

bool hasInode(const std::string& path, ino_t inode) {
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0 && status.st_ino == inode;
}

/// Whether one name with a number is later than another; the longer number is the larger one.
bool isEarlier(const std::string& left, const std::string& right) {
    return std::make_pair(left.size(), left) < std::make_pair(right.size(), right);
}

}  // namespace

// The results come first: a service names a result before its journal tells of it, so that less
// seems to be untold of while it runs.
Verification::Verification(const Settings& settings, const StopSignals& signals)
    : settings_(settings),
      signals_(signals),
      options_(conversionOf(settings)),
      present_(resultsIn(settings.outputDir)) {
    readJournals();
    if (settings.doneDir.empty()) return;
    for (const std::string& name : namesIn(settings.doneDir)) {
        const std::string former = withoutNumber(name);
        done_[former].push_back(name);
        if (former != name) done_[name].push_back(name);  // it may have come with its number
    }
    for (auto& [former, names] : done_) std::sort(names.begin(), names.end(), isEarlier);
}

bool Verification::run() {
    for (const auto& [name, told] : told_) {
        if (signals_.received() != 0) break;
        const std::string problem = problemOf(name, told);
        if (problem.empty()) continue;
        ++wrong_;
        report(name, problem);
    }
    for (const std::string& name : present_) {
        if (told_.count(name) > 0) continue;
        ++untold_;
        report(name, "no journal tells of it");
    }
    std::cout << "results like their sources: " << compared_
              << ", without source, of the journal's size: " << withoutSource_
              << ", wrong: " << wrong_ << ", not in the journal: " << untold_ << '\n';
    return wrong_ + untold_ == 0;
}

/// Keeps the latest line on each result in the output directory.
void Verification::readJournals() {
    static_cast<void>(Directory(settings_.journalDir));
    for (const std::string& journal : journalsBelow(settings_.journalDir)) {
        for (JournalEntry& entry : entriesIn(journal)) {
            if (!entry.converted || !belongsHere(entry.result)) continue;
            const auto [told, isNew] = told_.emplace(nameOf(entry.result), entry);
            if (!isNew && entry.seconds >= told->second.seconds) told->second = std::move(entry);
        }
    }
}

/// Whether a result was in the output directory, perhaps under another name of it: the archive may
/// have moved since. A directory that exists and is another one has results of its own.
bool Verification::belongsHere(const std::string& result) {
    const std::string directory = fs::path(result).parent_path();
    const auto [known, isNew] = here_.emplace(directory, true);
    std::error_code error;
    if (isNew && fs::exists(directory, error))
        known->second = fs::equivalent(directory, settings_.outputDir, error);
    return known->second;
}

void Verification::report(const std::string& name, const std::string& problem) {
    std::cout << printable(settings_.outputDir + "/" + name + ": " + problem) + "\n";
}

/// What is wrong with a result; empty: nothing. Counts it otherwise.
std::string Verification::problemOf(const std::string& name, const JournalEntry& told) {
    const std::string path = settings_.outputDir + "/" + name;
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0)
        return errno == ENOENT ? "missing" : "cannot be looked at: " + systemReason(errno);
    if (status.st_size == 0) return "empty";
    const std::optional<std::string> source = sourceOf(told);
    if (!source) return problemOfSize(static_cast<std::uintmax_t>(status.st_size), told);
    const std::string problem = difference(*source, path);
    if (problem.empty()) ++compared_;
    return problem.empty() ? "" : "compared with " + *source + ": " + problem;
}

std::string Verification::problemOfSize(std::uintmax_t size, const JournalEntry& told) {
    if (size != told.size)
        return "has " + std::to_string(size) + " bytes instead of " + std::to_string(told.size) +
               ", and its source is gone";
    ++withoutSource_;
    return "";
}

std::string Verification::difference(const std::string& source, const std::string& path) const {
    try {
        HeaderText text(readHeaderFile(source).bytes, options_.reading);
        complete(text, options_.additions);
        return differenceOf(text, path, options_.additions.checksum);
    } catch (const IngestError& error) {
        return error.what();
    } catch (const InputWaits& error) {
        return error.what();
    }
}

/// Where the source of a result is now: the very file that the journal tells of, or the latest one
/// of its name, because copies have other inode numbers.
std::optional<std::string> Verification::sourceOf(const JournalEntry& told) const {
    const std::vector<std::string> candidates = candidatesFor(told.source);
    if (candidates.empty()) return std::nullopt;
    const std::optional<ino_t> inode = inodeIn(told.identity);
    const auto same =
        std::find_if(candidates.begin(), candidates.end(),
                     [&inode](const std::string& path) { return inode && hasInode(path, *inode); });
    return same == candidates.end() ? candidates.back() : *same;
}

/// Files that may be a source, the likeliest last.
std::vector<std::string> Verification::candidatesFor(const std::string& source) const {
    std::vector<std::string> candidates;
    const std::string name = nameOf(source);
    if (!settings_.pattern.empty()) candidates.push_back(incomingDirectory(settings_) + "/" + name);
    candidates.push_back(source);
    const auto done = done_.find(name);
    if (done != done_.end()) {
        for (const std::string& moved : done->second)
            candidates.push_back(settings_.doneDir + "/" + moved);
    }
    candidates.erase(std::remove_if(candidates.begin(), candidates.end(),
                                    [](const std::string& path) { return !isThere(path); }),
                     candidates.end());
    return candidates;
}

}  // namespace zarn::ingest
