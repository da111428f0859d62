/// @file
/// Sleeping for a fraction of a second, and the space of a file system.
///
/// Both functions keep no state and may be called from several threads at once. Nothing is thrown
/// but `std::bad_alloc`.
#ifndef ZARNSYS_UTIL_UTILS_H
#define ZARNSYS_UTIL_UTILS_H

#include "Export.h"

namespace ZarnSys {

/// Blocks the calling thread for `sleepTime` seconds and logs the interval at DEBUG.
///
/// The interval is what the float really holds, cut off after whole nanoseconds: 0.1 asks for
/// 0 s and 100000001 ns. A signal ends the sleep early; a negative interval returns at once.
/// Neither is reported.
///
/// @param sleepTime  interval [s]. More seconds than the system's `time_t` holds (infinity, too)
///                   sleep as long as it can hold; not-a-number sleeps 0.
ZARNSYS_EXPORT void sleep(float sleepTime);

/// Size and free space of the file system that holds `path`, as an ordinary user sees them: the
/// superuser's reserve counts neither as size nor as free.
///
/// @param path       any existing file or directory of the file system
/// @param totalSize  receives the size [MiB, 1048576 bytes]
/// @param availSize  receives the free space [MiB]
/// @return           0, or -1 with `errno` set and both sizes untouched; nothing is logged
ZARNSYS_EXPORT int getFilesystemInfo(const char* path, float* totalSize, float* availSize);

}  // namespace ZarnSys

#endif  // ZARNSYS_UTIL_UTILS_H
