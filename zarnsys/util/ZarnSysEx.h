/// @file
/// The exception through which `FileIO` reports every failure.
#ifndef ZARNSYS_UTIL_ZARNSYSEX_H
#define ZARNSYS_UTIL_ZARNSYSEX_H

#include <exception>
#include <string>

#include "Export.h"

#pragma GCC diagnostic push
// what() hides the standard operation on purpose: programs change the text through it.
#pragma GCC diagnostic ignored "-Woverloaded-virtual"

/// Carries one message: the failed action, the name concerned and the system's error text.
///
/// Catch it by non-const reference and read `what()`. A handler that catches `std::exception` and
/// asks it for its description gets the standard library's generic text, not the message. Copies
/// are independent; an object is used by one thread at a time.
class ZARNSYS_EXPORT ZarnSysEx : public std::exception {
public:
    /// @param msg  message text, copied
    // NOLINTNEXTLINE(google-explicit-constructor): a text may stand for the exception
    ZarnSysEx(const std::string& msg);
    ZarnSysEx(const ZarnSysEx& other);             ///< copies the message
    ZarnSysEx& operator=(const ZarnSysEx& other);  ///< copies the message
    ~ZarnSysEx() override;

    /// The message, which the caller may change. Not the standard virtual operation of this name.
    std::string& what();

private:
    std::string msg_;
};

#pragma GCC diagnostic pop

#endif  // ZARNSYS_UTIL_ZARNSYSEX_H
