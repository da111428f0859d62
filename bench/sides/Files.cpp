#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/FitsUtils.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <stdexcept>
#include <string>

#include "Sides.h"

namespace {

constexpr mode_t FILE_MODE = 0664;

/// Opens as FileIO does: looks for the directory and the file, and sets the mode.
int openFile(const std::string& directory, const std::string& name, int flags) {
    struct stat status = {};
    if (::stat(directory.c_str(), &status) != 0) throw std::runtime_error(directory);
    if (::stat(name.c_str(), &status) != 0) flags |= O_CREAT;
    const int file = ::open(name.c_str(), flags, FILE_MODE);
    ::fchmod(file, FILE_MODE);
    return file;
}

std::size_t loadFile(const std::string& directory, const std::string& name) {
    std::array<char, 1024> chunk = {};
    std::stringstream text;
    const int file = openFile(directory, name, O_RDONLY);
    ssize_t count = 0;
    do {
        count = ::read(file, chunk.data(), chunk.size());
        text.write(chunk.data(), count);
    } while (count == static_cast<ssize_t>(chunk.size()));
    ::close(file);
    return static_cast<std::size_t>(text.tellp());
}

void addFile(const std::string& directory, std::size_t size) {
    const std::string name = directory + "/" + std::to_string(size);
    const std::string content(size, 'x');
    const std::string bytes = std::to_string(size);
    FileIO(name, false, true).write(content);
    addSide("file-write-" + bytes + "/ours", [=] {
        FileIO(name, false, true).write(content.c_str());
        return &content;
    });
    addSide("file-write-" + bytes + "/bare", [=] {
        const int file = openFile(directory, name, O_WRONLY);
        const ssize_t written = ::write(file, content.c_str(), std::strlen(content.c_str()));
        ::close(file);
        return written;
    });
    addSide("file-load-" + bytes + "/ours", [=] {
        std::stringstream text;
        FileIO(name, true, false).load(text);
        return text.tellp();
    });
    addSide("file-load-" + bytes + "/bare", [=] { return loadFile(directory, name); });
}

/// Writes a header text of as many cards, END not counted.
std::string writeHeader(const std::string& directory, int cards) {
    std::string name = directory + "/" + std::to_string(cards) + ".hdr";
    std::ofstream file(name);
    file << "SIMPLE  =                    T\nBITPIX  =                   16\n"
            "NAXIS   =                    0\n";
    for (int card = 3; card < cards; ++card) {
        const std::string key = "KEY" + std::to_string(card);
        file << std::left << std::setw(8) << key << "=                " << card + 10000
             << " / a value\n";
    }
    file << "END\n";
    return name;
}

/// Removes a card that may be missing.
void removeKey(fitsfile* file, const char* keyword) {
    int status = 0;
    fits_delete_key(file, keyword, &status);
}

int convertByHand(const std::string& header) {
    fitsfile* file = nullptr;
    int status = 0;
    fits_create_file(&file, "mem://", &status);
    std::ifstream text(header);
    for (std::string line; std::getline(text, line);)
        fits_write_record(file, line.c_str(), &status);
    fits_update_key_lng(file, "NAXIS", 0, "# of axes in frame", &status);
    for (const char* keyword : {"NAXIS1", "NAXIS2"}) removeKey(file, keyword);
    fits_close_file(file, &status);
    return status;
}

void addConversion(const std::string& name, const std::string& header) {
    addSide(name, [header] {
        fitsfile* file = nullptr;
        const int status = ZarnSysFits::hdr2fits(&file, header, "mem://");
        return status + ZarnSysFits::closeFitsFile(file);
    });
}

}  // namespace

void addFiles(const std::string& directory) {
    addFile(directory, 100);
    addFile(directory, 1000000);
    for (const int cards : {20, 150}) {
        const std::string header = writeHeader(directory, cards);
        const std::string row = "hdr2fits-" + std::to_string(cards);
        addConversion(row + "/ours", header);
        addSide(row + "/cfitsio", [header] { return convertByHand(header); });
    }
    for (const int cards : {50, 200, 800, 3200})
        addConversion("growth-cards/" + std::to_string(cards), writeHeader(directory, cards));
}
