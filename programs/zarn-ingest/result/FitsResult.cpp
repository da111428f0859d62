#include "zarn-ingest/result/FitsResult.h"

#include <ace/Log_Msg.h>

#include <array>
#include <cstddef>

#include "shared/files/MemoryFile.h"
#include "zarn-ingest/header/Fits.h"
#include "zarn-ingest/header/IngestError.h"
#include "zarn-ingest/header/cards/StructuralKeywords.h"

namespace zarn::ingest {

namespace {

constexpr int VERIFIED = 1;  // CFITSIO's word for a checksum that fits

/// Keeps the library's own error lines back: they name files of this process alone, and each look
/// of the service would bring them again.
class QuietLibrary {
public:
    QuietLibrary() : mask_(log().priority_mask(ACE_Log_Msg::PROCESS)) {
        log().priority_mask(mask_ & ~static_cast<u_long>(LM_ERROR), ACE_Log_Msg::PROCESS);
    }
    QuietLibrary(const QuietLibrary&) = delete;
    QuietLibrary& operator=(const QuietLibrary&) = delete;
    ~QuietLibrary() { log().priority_mask(mask_, ACE_Log_Msg::PROCESS); }

private:
    static ACE_Log_Msg& log() { return *ACE_Log_Msg::instance(); }

    u_long mask_;
};

std::string linesOf(const Header& header) {
    std::string lines;
    for (const Card& card : header) lines.append(card.text).append("\n");
    return lines;
}

/// Makes sure that the conversion saw the text, whose first card is SIMPLE: it takes a text that it
/// cannot open for an empty one.
void checkHasText(FitsFile* file) {
    int status = 0;
    std::array<char, FLEN_CARD> card = {};
    fits_read_record(file, 1, card.data(), &status);
    if (status != 0 || std::string(card.data()).rfind("SIMPLE", 0) != 0)
        throw FitsFileError("its text cannot be read again", FILE_NOT_OPENED);
}

void addExtension(FitsFile* file, const Header& header) {
    int status = 0;
    fits_create_hdu(file, &status);
    for (const Card& card : header) fits_write_record(file, card.text.c_str(), &status);
    check(status, "an extension cannot be written");
}

void addChecksum(FitsFile* file) {
    int status = 0;
    check(fits_write_chksum(file, &status), "no checksum can be written");
}

/// Reads a card without trailing blanks; false beyond the last one, END not counted.
bool readCard(FitsFile* file, int number, std::string& card) {
    int count = 0;
    int status = 0;
    std::array<char, FLEN_CARD> found = {};
    check(fits_get_hdrspace(file, &count, nullptr, &status), "the result cannot be read");
    if (number > count) return false;
    check(fits_read_record(file, number, found.data(), &status), "the result cannot be read");
    card = found.data();
    return true;
}

void compareCards(FitsFile* file, const Header& header, bool checksum) {
    int number = 0;
    std::string found;
    for (const Card& card : header) {
        if (!readCard(file, ++number, found) || found != card.text)
            throw IngestError("the result differs from this card: \"" + card.text + "\"",
                              card.number);
    }
    while (readCard(file, ++number, found)) {
        const bool added = checksum && isChecksum(found.substr(0, found.find_first_of(" =")));
        if (!added) throw IngestError("the result has another card: \"" + found + "\"");
    }
}

/// Makes sure that an HDU is its header alone.
void checkSize(FitsFile* file) {
    LONGLONG dataStart = 0;
    LONGLONG dataEnd = 0;
    int status = 0;
    fits_get_hduaddrll(file, nullptr, &dataStart, &dataEnd, &status);
    check(status, "the result cannot be read");
    if (dataEnd != dataStart) throw IngestError("the result holds more than headers");
}

void verifyChecksum(FitsFile* file) {
    int status = 0;
    int dataFits = VERIFIED;
    int headerFits = VERIFIED;
    check(fits_verify_chksum(file, &dataFits, &headerFits, &status),
          "the checksum cannot be verified");
    if (dataFits != VERIFIED || headerFits != VERIFIED)
        throw IngestError("the checksum of the result does not fit");
}

}  // namespace

void makeFitsFile(const HeaderText& text, const std::string& path, bool checksum) {
    const QuietLibrary quiet;
    const std::vector<Header>& headers = text.headers();
    const MemoryFile primary(linesOf(headers.front()));
    FitsHandle file;
    check(ZarnSysFits::hdr2fits(file.receive(), primary.path(), path), "cannot be converted");
    checkHasText(file.get());
    if (checksum) addChecksum(file.get());
    for (std::size_t i = 1; i < headers.size(); ++i) {
        addExtension(file.get(), headers[i]);
        if (checksum) addChecksum(file.get());
    }
    check(file.close(), "the result cannot be completed");
}

void verifyFitsFile(const HeaderText& text, const std::string& path, bool checksum) {
    FitsHandle file;
    check(ZarnSysFits::openFitsFile(file.get(), path, READONLY), "the result cannot be opened");
    int hdu = 0;
    for (const Header& header : text.headers()) {
        int status = 0;
        check(fits_movabs_hdu(file.get(), ++hdu, nullptr, &status), "the result cannot be read");
        compareCards(file.get(), header, checksum);
        checkSize(file.get());
        if (checksum) verifyChecksum(file.get());
    }
    int count = 0;
    int status = 0;
    check(fits_get_num_hdus(file.get(), &count, &status), "the result cannot be read");
    if (count != hdu) throw IngestError("the result holds more than headers");
    check(file.close(), "the result cannot be closed");
}

}  // namespace zarn::ingest
