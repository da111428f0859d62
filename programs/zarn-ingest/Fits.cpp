#include "Fits.h"

#include <array>
#include <utility>

std::string statusText(int status) {
    std::array<char, FLEN_STATUS> text = {};
    fits_get_errstatus(status, text.data());
    return "CFITSIO status " + std::to_string(status) + ": " + text.data();
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
