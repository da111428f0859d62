/// @file
/// The export attribute of the library's public interface.
///
/// Everything is compiled hidden; what carries `ZARNSYS_EXPORT` is visible to programs.
#ifndef ZARNSYS_UTIL_EXPORT_H
#define ZARNSYS_UTIL_EXPORT_H

/// Makes a class or function part of the shared library's interface.
#define ZARNSYS_EXPORT __attribute__((visibility("default")))

#endif  // ZARNSYS_UTIL_EXPORT_H
