/// Errors of system calls as exceptions.
#ifndef ZARN_PROGRAMS_SYSTEMERROR_H
#define ZARN_PROGRAMS_SYSTEMERROR_H

#include <string>

namespace zarn {

/// Throws what `errno` says now; call it before anything else can change that.
///
/// @param what  the action or the name concerned
/// @throw std::system_error  always
[[noreturn]] void throwSystemError(const std::string& what);

/// The same for a caller who will name the file himself.
[[noreturn]] void throwSystemError();

/// What an error number means, in words.
std::string systemReason(int error);

/// Whether an error means that there is no file of this name.
bool leadsNowhere(int error);

}  // namespace zarn

#endif  // ZARN_PROGRAMS_SYSTEMERROR_H
