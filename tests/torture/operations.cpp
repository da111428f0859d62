/// One operation of FileIO or ZarnSysFits on files of the present directory, between two system
/// calls that a tracer recognises. Tells how it ended, and how many descriptors it left open.
///   operations NAME
#include <ace/Log_Msg.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/FitsUtils.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

namespace {

std::string of(bool value) { return value ? "true" : "false"; }

std::string load() {
    std::stringstream text;
    FileIO("old", true, false).load(text);
    return text.str();
}

std::string match() {
    std::vector<std::string> names;
    FileIO("ol?", true, false).match(names, 0);
    return std::to_string(names.size()) + " names";
}

std::string openFits() {
    FitsFile* file = nullptr;
    const int status = ZarnSysFits::openFitsFile(file, "old.fits", READONLY);
    if (status != 0) return "status of opening";
    return ZarnSysFits::closeFitsFile(file) == 0 ? "" : "status of closing";
}

std::string makeFits() {
    FitsFile* file = nullptr;
    const int made = ZarnSysFits::hdr2fits(&file, "old.hdr", "new.fits");
    const int closed = file == nullptr ? 0 : ZarnSysFits::closeFitsFile(file);
    if (made != 0) return "status of making";
    return closed == 0 ? "" : "status of closing";
}

const std::map<std::string, std::function<std::string()>> OPERATIONS = {
    {"checkCreateDir", [] { return FileIO("", true, true).checkCreateDir("dir"), ""; }},
    {"exists", [] { return of(FileIO("old", true, false).exists()); }},
    {"hdr2fits", makeFits},
    {"isFile", [] { return of(FileIO("old", true, false).isFile()); }},
    {"load", load},
    {"match", match},
    {"open", [] { return FileIO("", true, true).open("dir/new", true, true), ""; }},
    {"openFitsFile", openFits},
    {"pathExists", [] { return of(FileIO("in/x", true, false).pathExists()); }},
    {"remove", [] { return FileIO("old", true, true).remove(false), ""; }},
    {"rename", [] { return FileIO("old", true, true).rename("new"), ""; }},
    {"write", [] { return FileIO("new", false, true).write("a text"), ""; }},
};

std::ptrdiff_t openFiles() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

void mark() { static_cast<void>(::access("/mark", F_OK)); }

std::string outcomeOf(const std::function<std::string()>& operation) {
    try {
        return "gave " + operation();
    } catch (ZarnSysEx& error) {
        return std::string("threw ") + error.what();
    }
}

}  // namespace

int main(int /*argc*/, char* argv[]) {
    const auto& operation = OPERATIONS.at(argv[1]);
    ACE_LOG_MSG->priority_mask(0, ACE_Log_Msg::PROCESS);  // whose calls are not the operation's
    ACE_LOG_MSG->priority_mask(0, ACE_Log_Msg::THREAD);
    const std::ptrdiff_t before = openFiles();
    mark();
    const std::string outcome = outcomeOf(operation);
    mark();
    std::cout << outcome << '\n' << openFiles() - before << " left open\n";
}
