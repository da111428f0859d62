#include "zarnsys/util/Utils.h"

#include <sys/statvfs.h>

#include <cerrno>
#include <cmath>
#include <ctime>
#include <limits>
#include <string>

#include "zarnsys/util/Log.h"

namespace {

// The what and ident tools find this text in the built library.
const char rcsId[] = "@(#) $Id: Utils.cpp,v " ZARNSYS_VERSION " " ZARNSYS_SOURCE_DATE " $";
// An optimiser drops a text that nothing reads; this pointer must stay, and the text with it.
[[gnu::used]] const char* const use_rcsId = rcsId;

constexpr double NANOSECONDS_PER_SECOND = 1e9;
constexpr double BYTES_PER_MEBIBYTE = 1048576.0;
constexpr unsigned long DEFAULT_BLOCK_SIZE = 1024;  // bytes, where the system reports 0

/// `seconds`, a whole number, as the system's type, or the nearest value that this type holds.
std::time_t clampToTimeT(double seconds) {
    using Limits = std::numeric_limits<std::time_t>;
    const double limit = std::ldexp(1.0, Limits::digits);  // the first whole number beyond
    if (seconds >= limit) return Limits::max();
    if (seconds <= -limit) return Limits::min();
    return static_cast<std::time_t>(seconds);
}

/// The interval that a float holds, each part cut off toward zero.
timespec toInterval(float seconds) {
    if (std::isnan(seconds)) return {0, 0};
    double whole = 0.0;
    const double fraction = std::modf(static_cast<double>(seconds), &whole);
    return {clampToTimeT(whole), static_cast<long>(fraction * NANOSECONDS_PER_SECOND)};
}

}  // namespace

void ZarnSys::sleep(float sleepTime) {
    const timespec sleepT = toInterval(sleepTime);
    logDebug()("Sleeping: %ss and %dns", std::to_string(sleepT.tv_sec).c_str(),
               static_cast<int>(sleepT.tv_nsec));
    static_cast<void>(::nanosleep(&sleepT, nullptr));  // an early end is the caller's wish
}

int ZarnSys::getFilesystemInfo(const char* path, float* totalSize, float* availSize) {
    errno = 0;
    struct statvfs info = {};
    if (::statvfs(path, &info) != 0) return -1;
    const double blockSize =
        static_cast<double>(info.f_frsize != 0 ? info.f_frsize : DEFAULT_BLOCK_SIZE);
    const double availBlocks = static_cast<double>(info.f_bavail);
    const double reservedBlocks = static_cast<double>(info.f_bfree) - availBlocks;
    const double userBlocks = static_cast<double>(info.f_blocks) - reservedBlocks;
    *totalSize = static_cast<float>(userBlocks * blockSize / BYTES_PER_MEBIBYTE);
    *availSize = static_cast<float>(availBlocks * blockSize / BYTES_PER_MEBIBYTE);
    return 0;
}
