/// One operation of the library in the present directory, between two system calls that a tracer
/// recognises, and again with the same objects. Tells how each ended, and between how many
/// descriptors they left open.
///   operations NAME
#include <ace/Log_Msg.h>
#include <fcntl.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/FitsUtils.h>
#include <zarnsys/util/GenConfig.h>
#include <zarnsys/util/MoonGrid.h>
#include <zarnsys/util/StringUtils.h>
#include <zarnsys/util/WexoProperties.h>
#include <zarnsys/util/WexoTime.h>

#include <array>
#include <cstdio>
#include <iostream>
#include <map>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int OWN = 3;  // exit status

std::string of(bool value) { return value ? "true" : "false"; }

const std::string none;

std::string makeFits(FileIO& /*unused*/) {
    FitsFile* file = nullptr;
    const int made = ZarnSysFits::hdr2fits(&file, "old.hdr", "new.fits");
    const int closed = file == nullptr ? 0 : ZarnSysFits::closeFitsFile(file);
    if (made != 0) return "status of making";
    return closed == 0 ? "" : "status of closing";
}

std::string load(FileIO& file) {
    std::stringstream text;
    file.load(text);
    return text.str();
}

std::string match(FileIO& file) {
    std::vector<std::string> names = {"earlier"};
    try {
        file.match(names, 0);
    } catch (...) {
        if (names != std::vector<std::string>{"earlier"}) return "a list half made";
        throw;
    }
    return std::to_string(names.size()) + " names";
}

std::string openFits(FileIO& /*unused*/) {
    FitsFile* file = nullptr;
    const int status = ZarnSysFits::openFitsFile(file, "old.fits", READONLY);
    if (status != 0) return "status of opening";
    return ZarnSysFits::closeFitsFile(file) == 0 ? "" : "status of closing";
}

// What has nothing to do with files can lack memory.

std::string grids(FileIO& /*unused*/) {
    static MoonGrid moon;
    static SkyGrid sky;
    const std::vector<SkyPosition> targets(100, {83.82, -5.39});
    computeMoonGrid(targets, {61000, 61000.5}, telescopePlace(OLAN), moon);
    computeSkyGrid(targets, {61000, 61000.5}, telescopePlace(OLAN), SkyConditions(), sky);
    return std::to_string(moon.separation(1, 99)) + std::to_string(sky.altitude(1, 99));
}

std::string options(FileIO& /*unused*/) {
    static std::array<const char*, 3> words = {"program", "--name=value", "argument"};
    struct Options : GenConfig {
        Options() : GenConfig(words.size(), words.data()) {
            optionMap_.emplace("name", OptionStruct(NO_SHORT_NAME, "NAME", false, true, "", ""));
        }
        const std::string& name() const { return optionMap_.at("name").availValues_.back(); }
    };
    static Options given;
    return given.parseCommandLine(false) == 0 ? given.name() : "status of parsing";
}

std::string properties(FileIO& /*unused*/) {
    WexoProperties& file = *WexoProperties::instance();
    std::string value;
    if (file.load("p.ini") != 0) return "status of loading";
    return file.get("service", "journal", value) == 0 ? value : "status of getting";
}

std::string texts(FileIO& /*unused*/) {
    std::vector<std::string> words;
    ZarnSys::split("a text of words longer than what a string holds in itself", " ", words);
    const ACE_Time_Value time(1000000000);
    return ZarnSys::lower(words.back()) + WexoTime::asISOTimeString(time) +
           WexoTime::asUnixTimeString(time);
}

/// What is done, given an object for the file of a path.
struct Operation {
    const char* path;
    bool read;
    bool write;
    std::string (*run)(FileIO& file);
};

const std::map<std::string, Operation> OPERATIONS = {
    {"checkCreateDir",
     {"", true, true, [](FileIO& file) { return file.checkCreateDir("dir"), none; }}},
    {"exists", {"old", true, false, [](FileIO& file) { return of(file.exists()); }}},
    {"grids", {"", true, false, grids}},
    {"hdr2fits", {"", true, false, makeFits}},
    {"isFile", {"old", true, false, [](FileIO& file) { return of(file.isFile()); }}},
    {"load", {"old", true, false, load}},
    {"match", {"ol?", true, false, match}},
    {"open", {"", true, true, [](FileIO& file) { return file.open("dir/new", true, true), none; }}},
    {"openFitsFile", {"", true, false, openFits}},
    {"options", {"", true, false, options}},
    {"pathExists", {"in/x", true, false, [](FileIO& file) { return of(file.pathExists()); }}},
    {"properties", {"", true, false, properties}},
    {"remove", {"old", true, true, [](FileIO& file) { return file.remove(false), none; }}},
    {"rename", {"old", true, true, [](FileIO& file) { return file.rename("new"), none; }}},
    {"texts", {"", true, false, texts}},
    {"write", {"new", false, true, [](FileIO& file) { return file.write("a text"), none; }}},
};

int openFiles() {
    int number = 0;
    for (int fd = 0; fd < 256; ++fd) number += ::fcntl(fd, F_GETFD) == -1 ? 0 : 1;
    return number;
}

void mark() { static_cast<void>(::access("/mark", F_OK)); }

/// How an operation ends; makes the object when there is none.
std::string outcomeOf(const Operation& operation, std::optional<FileIO>& file) {
    try {
        if (!file) file.emplace(operation.path, operation.read, operation.write);
        return "gave " + operation.run(*file);
    } catch (ZarnSysEx& error) {
        return std::string("threw ") + error.what();
    } catch (const std::bad_alloc& error) {
        return std::string("threw ") + error.what();
    }
}

std::string report(const Operation& operation) {
    const int before = openFiles();
    std::optional<FileIO> file;
    mark();
    const std::string outcome = outcomeOf(operation, file);
    mark();
    if (file) file->close();  // forgets a descriptor that is none
    const std::string again = outcomeOf(operation, file);
    file.reset();
    return outcome + '\n' + std::to_string(openFiles() - before) + " left open\n" + again + '\n';
}

}  // namespace

int main(int /*argc*/, char* argv[]) {
    ACE_LOG_MSG->priority_mask(0, ACE_Log_Msg::PROCESS);  // whose calls are not the operation's
    ACE_LOG_MSG->priority_mask(0, ACE_Log_Msg::THREAD);
    try {
        std::cout << report(OPERATIONS.at(argv[1]));
    } catch (const std::bad_alloc&) {
        return OWN;  // what lacks memory is this program itself
    }
}
