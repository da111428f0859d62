#include "HeaderFile.h"

#include <ace/Log_Msg.h>
#include <zarnsys/util/FitsUtils.h>

#include <array>

namespace zarn::python {

namespace {

/// Turns the process's log lines off while it lives.
class Quiet {
public:
    Quiet() : mask_(log().priority_mask(0, ACE_Log_Msg::PROCESS)) {}
    ~Quiet() { log().priority_mask(mask_, ACE_Log_Msg::PROCESS); }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    static ACE_Log_Msg& log() { return *ACE_Log_Msg::instance(); }

    u_long mask_;
};

/// CFITSIO's words for a status, and those that its functions left behind.
std::string explain(int status) {
    std::array<char, FLEN_ERRMSG> words = {};
    fits_get_errstatus(status, words.data());
    std::string text = words.data();
    while (fits_read_errmsg(words.data()) != 0) text += std::string("; ") + words.data();
    return text;
}

/// Completes a new file on disk and closes it, or deletes it after a failure.
int finish(FitsFile* file, int status) {
    if (file == nullptr) return status;
    fits_flush_file(file, &status);
    if (status == 0) return ZarnSysFits::closeFitsFile(file);
    int ignored = 0;
    fits_delete_file(file, &ignored);
    return status;
}

}  // namespace

Outcome makeFits(const std::string& headerName, const std::string& fitsName) {
    const Quiet quiet;
    fits_clear_errmsg();
    FitsFile* file = nullptr;
    const int made = ZarnSysFits::hdr2fits(&file, headerName, fitsName);
    const int status = finish(file, made);
    if (status == 0) return {0, ""};
    return {status, explain(status)};
}

}  // namespace zarn::python
