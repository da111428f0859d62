#include "zarnsys/util/FitsUtils.h"

#include <array>
#include <fstream>
#include <vector>

#include "zarnsys/util/Log.h"

namespace {

constexpr int FITS_ERROR_MESSAGE_MAX_LENGTH = 31;  // CFITSIO's status text and its NUL

// An inline constant leaves no symbol unless its address is taken; programs that bind to the
// library at run time look for one.
[[gnu::used]] const int* const exportedRecordMaxLength = &ZarnSysFits::RECORD_MAX_LENGTH;

/// Readies CFITSIO, which does so by itself when it first opens a file, but then not for one thread
/// alone: another may take tables half filled and a lock not yet made.
void initialiseCfitsio() { [[maybe_unused]] static const int done = fits_init_cfitsio(); }

/// The lines of a file, up to the first that cannot be read.
///
/// @throw std::bad_alloc  where the stream alone would say nothing, and end
std::vector<std::string> readLines(const std::string& fileName) {
    std::ifstream text(fileName);
    text.exceptions(std::ios::badbit);
    std::vector<std::string> lines;
    try {
        for (std::string line; std::getline(text, line);) lines.push_back(line);
    } catch (const std::ios::failure&) {  // NOLINT(bugprone-empty-catch): as at the end
    }
    return lines;
}

/// Writes one card per line, up to the first that CFITSIO refuses.
///
/// @return  false when one was refused
bool writeRecords(FitsFile* file, const std::vector<std::string>& header, int& status) {
    for (const std::string& line : header) {
        if (fits_write_record(file, line.c_str(), &status) != 0) return false;
    }
    return true;
}

bool hasCard(FitsFile* file, const char* keyword) {
    std::array<char, ZarnSysFits::RECORD_MAX_LENGTH> readRecord;
    int readStatus = 0;  // of its own: a missing card is no failure
    return fits_read_card(file, keyword, readRecord.data(), &readStatus) == 0;
}

/// Makes the header describe no data array: the file holds the header only.
void dropDataArray(FitsFile* file, int& status) {
    fits_update_key_lng(file, "NAXIS", 0, "# of axes in frame", &status);
    const bool hasNaxis1 = hasCard(file, "NAXIS1");
    const bool hasNaxis2 = hasCard(file, "NAXIS2");
    if (hasNaxis1) fits_delete_key(file, "NAXIS1", &status);
    if (hasNaxis2) fits_delete_key(file, "NAXIS2", &status);
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the published signature takes a value
int ZarnSysFits::openFitsFile(FitsFile*& rpfitsFile, std::string fileName, int mode) {
    initialiseCfitsio();
    int status = 0;
    return fits_open_file(&rpfitsFile, fileName.c_str(), mode, &status);
}

int ZarnSysFits::closeFitsFile(FitsFile* pfitsFile) {
    int status = 0;
    return fits_close_file(pfitsFile, &status);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the published signature takes values
int ZarnSysFits::hdr2fits(FitsFile** fptr, std::string hdrFilename, std::string fitsFilename) {
    const std::vector<std::string> header = readLines(hdrFilename);
    initialiseCfitsio();
    int status = 0;
    if (fits_create_file(fptr, fitsFilename.c_str(), &status) == 0) {
        if (writeRecords(*fptr, header, status)) {
            dropDataArray(*fptr, status);
        } else {
            logError()("Error when writing records to %s from %s", fitsFilename.c_str(),
                       hdrFilename.c_str());
        }
    }
    if (status == 0) return status;
    std::array<char, FITS_ERROR_MESSAGE_MAX_LENGTH> fitsErrorMessage = {};
    fits_get_errstatus(status, fitsErrorMessage.data());
    logError()("Error converting %s to %s : %s", hdrFilename.c_str(), fitsFilename.c_str(),
               fitsErrorMessage.data());
    return status;
}
