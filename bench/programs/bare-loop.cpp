/// Converts header texts as the shortest program would: bare-loop DIRECTORY LIST [sync]
///
/// LIST names the texts, one a line. Each becomes DIRECTORY/NAME.fits by way of a temporary name;
/// with "sync", it is safe on disk before it gets its name.

#include <fcntl.h>
#include <unistd.h>
#include <zarnsys/util/FitsUtils.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

bool makeSafe(const std::string& name) {
    const int file = ::open(name.c_str(), O_RDONLY);
    const bool safe = file != -1 && ::fsync(file) == 0;
    ::close(file);
    return safe;
}

bool convert(const std::string& text, const std::filesystem::path& directory, bool sync) {
    const std::string result = directory / std::filesystem::path(text).stem().concat(".fits");
    const std::string temporary = result + ".tmp";
    FitsFile* file = nullptr;
    if (ZarnSysFits::hdr2fits(&file, text, temporary) != 0) return false;
    if (ZarnSysFits::closeFitsFile(file) != 0 || (sync && !makeSafe(temporary))) return false;
    return std::rename(temporary.c_str(), result.c_str()) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    std::filesystem::create_directory(argv[1]);
    std::ifstream list(argv[2]);
    for (std::string text; std::getline(list, text);)
        if (!convert(text, argv[1], argc > 3)) return 1;
    return 0;
}
