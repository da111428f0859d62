#include "Printable.h"

namespace {

constexpr unsigned char DELETE = 0x7F;  // the control character beyond the printable ones

}  // namespace

std::string printable(const std::string& text) {
    static const char digits[] = "0123456789ABCDEF";
    std::string line;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code >= ' ' && code != DELETE && c != '\\') {
            line += c;
        } else {
            line.append("\\x").append(1, digits[code / 16]).append(1, digits[code % 16]);
        }
    }
    return line;
}
