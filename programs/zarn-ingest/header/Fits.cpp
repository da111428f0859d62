#include "zarn-ingest/header/Fits.h"

#include <array>
#include <utility>

#include "zarn-ingest/header/IngestError.h"

namespace zarn::ingest {

namespace {

constexpr int FIRST_OF_HEADERS = 201;  // CFITSIO's lower ones are of files and memory

}  // namespace

std::string statusText(int status) {
    std::array<char, FLEN_STATUS> text = {};
    fits_get_errstatus(status, text.data());
    return "CFITSIO status " + std::to_string(status) + ": " + text.data();
}

void check(int status, const std::string& action) {
    if (status == 0) return;
    std::array<char, FLEN_ERRMSG> detail = {};
    fits_read_errmsg(detail.data());
    const std::string reason = detail.front() == '\0' ? "" : std::string("; ") + detail.data();
    const std::string text = action + " (" + statusText(status) + reason + ")";
    if (status < FIRST_OF_HEADERS) throw FitsFileError(text, status);
    throw IngestError(text, 0, status);
}

std::string valueOf(std::string card) {
    std::array<char, FLEN_VALUE> value = {};
    int status = 0;
    fits_parse_value(card.data(), value.data(), nullptr, &status);
    return status == 0 ? value.data() : "";
}

FitsHandle::~FitsHandle() {
    if (file_ == nullptr) return;
    int status = 0;
    fits_update_key_lng(file_, "NAXIS", 0, nullptr, &status);
    static_cast<void>(close());  // the failure that left it open has been reported
}

int FitsHandle::close() { return ZarnSysFits::closeFitsFile(std::exchange(file_, nullptr)); }

}  // namespace zarn::ingest
