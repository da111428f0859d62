/// Names through `FileIO`, and texts through `split`. The first line of an input is the name, the
/// second one an extension and the set of delimiters.

#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/Harness.h"
#include "tests/support/TempDir.h"
#include "zarnsys/util/FileIO.h"
#include "zarnsys/util/StringUtils.h"
#include "zarnsys/util/ZarnSysEx.h"

/// Takes the system's place: a shell must find nothing in a name but the name.
extern "C" int system(const char* command) {
    constexpr char CHMOD[] = "/bin/chmod 755 ";
    constexpr char PLAIN[] =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+,:@%=";
    const bool isChmod = std::strncmp(command, CHMOD, std::strlen(CHMOD)) == 0;
    zarn::require(isChmod, "the shell runs chmod");
    const char* const name = command + std::strlen(CHMOD);
    zarn::require(*name == '/' && name[std::strspn(name, PLAIN)] == '\0', "on one plain name");
    return 0;
}

namespace zarn {

namespace {

/// Whether the system follows a part of a path upwards.
bool leadsUp(const std::string& name) {
    return ("/" + name + "/").find("/../") != std::string::npos;
}

/// Whether a part of a pattern can match "..", and others' files with it.
bool mayMatchUp(const std::string& pattern) {
    return pattern.find("/.") != std::string::npos || pattern.find("\\.") != std::string::npos;
}

/// A file of this name holds what is written to it, unless an exception says why not.
void writeAndRead(const std::string& name, const std::string& text) {
    FileIO file(name, true, true);
    file.write(text).close();
    std::stringstream content;
    file.load(content);
    require(std::filesystem::is_regular_file(name) && file.isFile(), "the file has the name");
    require(content.str() == text, "the file holds the text");
    file.close().rename(name + ".moved");
    require(!std::filesystem::exists(name), "a file moves");
    file.remove(true);
    require(!std::filesystem::exists(name + ".moved"), "the file is removed");
}

void makeDirectory(const std::string& name) {
    FileIO("", false, true).checkCreateDir(name);
    require(std::filesystem::exists(name), "the directory has the name");
}

/// The parts of a name belong together.
void takeApart(const std::string& name, const std::string& extension) {
    FileIO file(name, true, false);
    const std::string path = file.getPath();
    const std::string base = file.getBaseName();
    if (name.find('/') != std::string::npos && path != "/")
        require(path + "/" + base == name, "path and base name make the name");
    file.setExtension(extension);
    const std::string::size_type dot = extension.rfind('.');
    if (extension.find('/') == std::string::npos)
        require(file.getExtension() == extension.substr(dot + 1), "the extension is the last one");
    if (mayMatchUp(name)) return;
    std::vector<std::string> found;
    FileIO(name, true, false).match(found, 0);
    for (const std::string& one : found)
        require(std::filesystem::exists(std::filesystem::symlink_status(one)), "a match is there");
}

/// The fields, by the C library.
void compareFields(std::string text, const std::string& delimiters) {
    std::vector<std::string> fields;
    ZarnSys::split(text, delimiters, fields);
    std::vector<std::string> expected;
    char* rest = nullptr;
    for (char* field = ::strtok_r(text.data(), delimiters.c_str(), &rest); field != nullptr;
         field = ::strtok_r(nullptr, delimiters.c_str(), &rest))
        expected.emplace_back(field);
    require(fields == expected, "split finds the fields that strtok_r finds");
}

}  // namespace

void tryInput(const std::string& input) {
    std::vector<std::string> lines = linesOf(input);
    lines.resize(2);
    const std::string& name = lines[0];
    const std::string& other = lines[1];
    static const TempDir dir;
    compareFields(name, other);
    dir.put("canary", "alive");
    std::filesystem::create_directory(dir / "in");
    takeApart(dir / "in/" + name, other);
    if (!leadsUp(name) && !leadsUp(other)) {
        tryOrRefuse<ZarnSysEx>([&] { makeDirectory(dir / "in/" + other); });
        tryOrRefuse<ZarnSysEx>(
            [&] { writeAndRead(dir / "in/" + name, input.substr(0, input.find('\0'))); });
    }
    std::filesystem::remove_all(dir / "in");
    require(dir.get("canary") == "alive", "no other file is touched");
}

}  // namespace zarn
