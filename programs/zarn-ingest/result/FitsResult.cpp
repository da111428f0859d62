#include "zarn-ingest/result/FitsResult.h"

#include <ace/Log_Msg.h>

#include <array>
#include <cstddef>
#include <string_view>

#include "shared/cli/BeginsWith.h"
#include "shared/files/Reading.h"
#include "zarn-ingest/header/Fits.h"
#include "zarn-ingest/header/IngestError.h"
#include "zarn-ingest/header/cards/StructuralKeywords.h"
#include "zarn-ingest/header/lines/Columns.h"

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
    if (status != 0 || !beginsWith(card.data(), "SIMPLE"))
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

/// Reads a file card by card, whatever the cards say.
class CardReader {
public:
    explicit CardReader(int fd) : fd_(fd) {}

    /// The next 80 bytes, valid until the next call; fewer at the end of the file.
    std::string_view next() {
        if (bytes_.size() - at_ < CARD_LENGTH) fill();
        const std::string_view card = std::string_view{bytes_}.substr(at_, CARD_LENGTH);
        at_ += card.size();
        read_ += card.size();
        return card;
    }

    bool isAtBlock() const { return read_ % BLOCK == 0; }

private:
    static constexpr std::size_t BLOCK = 2880;  // the unit of a header's size [bytes]

    void fill() {
        bytes_.erase(0, at_);
        at_ = 0;
        while (bytes_.size() < CARD_LENGTH && readChunk(fd_, bytes_)) {
        }
    }

    int fd_;
    std::string bytes_;
    std::size_t at_ = 0;
    std::size_t read_ = 0;  ///< in all
};

/// @throw FitsFileError  when the file ends before the card does
bool isCard(std::string_view found, std::string_view expected) {
    static const std::string blanks(CARD_LENGTH, ' ');
    if (found.size() < CARD_LENGTH) throw FitsFileError("the result is cut short", END_OF_FILE);
    return begins(found, expected) &&
           found.substr(expected.size()) == std::string_view{blanks}.substr(expected.size());
}

void compareHeader(CardReader& reader, const Header& header, bool checksum) {
    for (const Card& card : header) {
        if (!isCard(reader.next(), card.text))
            throw IngestError("the result differs from this card: \"" + card.text + "\"",
                              card.number);
    }
    std::string_view found = reader.next();
    while (checksum && isChecksum(withoutTrailing(found.substr(0, KEYWORD_LENGTH))))
        found = reader.next();
    if (!isCard(found, "END"))
        throw IngestError("the result has another card: \"" + std::string(found) + "\"");
    while (!reader.isAtBlock()) {
        if (!isCard(reader.next(), "")) throw IngestError("the result holds more than headers");
    }
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

void verifyChecksums(const std::string& path, int hdus) {
    FitsHandle file;
    check(ZarnSysFits::openFitsFile(file.get(), path, READONLY), "the result cannot be opened");
    for (int hdu = 1; hdu <= hdus; ++hdu) {
        int status = 0;
        check(fits_movabs_hdu(file.get(), hdu, nullptr, &status), "the result cannot be read");
        verifyChecksum(file.get());
    }
    check(file.close(), "the result cannot be closed");
}

}  // namespace

void makeFitsFile(const HeaderText& text, MemoryFile& memory, const std::string& path,
                  bool checksum) {
    const QuietLibrary quiet;
    const std::vector<Header>& headers = text.headers();
    memory.replace(linesOf(headers.front()));
    FitsHandle file;
    check(ZarnSysFits::hdr2fits(file.receive(), memory.path(), path), "cannot be converted");
    checkHasText(file.get());
    if (checksum) addChecksum(file.get());
    for (std::size_t i = 1; i < headers.size(); ++i) {
        addExtension(file.get(), headers[i]);
        if (checksum) addChecksum(file.get());
    }
    check(file.close(), "the result cannot be completed");
}

void verifyFitsFile(const HeaderText& text, int fd, bool checksum) {
    CardReader reader(fd);
    for (const Header& header : text.headers()) compareHeader(reader, header, checksum);
    if (!reader.next().empty()) throw IngestError("the result holds more than headers");
    if (checksum) verifyChecksums(descriptorPath(fd), static_cast<int>(text.headers().size()));
}

}  // namespace zarn::ingest
