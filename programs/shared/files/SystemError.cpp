#include "shared/files/SystemError.h"

#include <cerrno>
#include <system_error>

namespace zarn {

void throwSystemError(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void throwSystemError() { throw std::system_error(errno, std::generic_category()); }

std::string systemReason(int error) { return std::generic_category().message(error); }

bool leadsNowhere(int error) {
    return error == ENOENT || error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG;
}

}  // namespace zarn
