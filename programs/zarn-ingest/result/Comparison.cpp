#include "zarn-ingest/result/Comparison.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <exception>

#include "shared/cli/Reason.h"
#include "shared/files/Reading.h"
#include "shared/files/SystemError.h"
#include "zarn-ingest/header/Fits.h"
#include "zarn-ingest/header/IngestError.h"
#include "zarn-ingest/result/FitsResult.h"

namespace zarn::ingest {

namespace {

/// Whether an error tells that a name leads to nothing that can be opened.
bool isNoFile(int error) { return error == ENOENT || error == ELOOP || error == ENXIO; }

/// For a result that is there and cannot be compared.
InputWaits cannotRead(const std::string& result, const std::string& reason) {
    return InputWaits("the result " + result + " cannot be read: " + reason);
}

}  // namespace

MoonCards complete(HeaderText& text, const Additions& additions) {
    if (additions.checksum) text.dropChecksums();
    if (!additions.moon) return {};
    MoonCards moon = moonCards(text, *additions.moon);
    text.append(moon.lines);
    return moon;
}

std::string differenceOf(const HeaderText& text, const std::string& result, bool checksum) {
    const Descriptor existing(::open(result.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (existing.get() == -1 && isNoFile(errno)) return "there is no file of this name";
    if (existing.get() == -1 || ::fstat(existing.get(), &status) != 0)
        throw cannotRead(result, systemReason(errno));
    if (!S_ISREG(status.st_mode)) return "the name belongs to something else than a file";
    try {
        verifyFitsFile(text, existing.get(), checksum);
        return "";
    } catch (const IngestError& error) {
        return error.what();
    } catch (const FitsFileError& error) {
        if (error.status() != END_OF_FILE) throw InputWaits(error.what());
        return error.what();
    } catch (const std::exception& error) {
        throw cannotRead(result, reasonOf(error));
    }
}

}  // namespace zarn::ingest
