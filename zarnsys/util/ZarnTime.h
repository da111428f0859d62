/// @file
/// The library's time types.
#ifndef ZARNSYS_UTIL_ZARNTIME_H
#define ZARNSYS_UTIL_ZARNTIME_H

/// A Modified Julian Date [d], universal time: the Julian Date less 2400000.5.
using MJD_DATE = double;

#endif  // ZARNSYS_UTIL_ZARNTIME_H
