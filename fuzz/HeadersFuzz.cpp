/// Several headers in one text. At each '@' a header begins as the next character chooses, so that
/// the fuzzer need not find out how.

#include <array>
#include <string>
#include <vector>

#include "fuzz/Conversion.h"
#include "fuzz/Harness.h"
#include "zarnsys/util/StringUtils.h"

namespace {

const std::array<std::string, 8> BEGINNINGS = {
    "SIMPLE  =                    T\nBITPIX  =                    8\nNAXIS   =                    "
    "0\n",
    "XTENSION= 'IMAGE   '\nBITPIX  =                  -32\nNAXIS   =                    2\n"
    "NAXIS1  =                  100\nNAXIS2  =                  100\n",
    "XTENSION= 'BINTABLE'\nBITPIX  =                    8\nNAXIS   =                    2\n"
    "NAXIS1  =                    8\nNAXIS2  =                   10\nPCOUNT  =                    "
    "0\n"
    "GCOUNT  =                    1\nTFIELDS =                    1\nTFORM1  = '1D      '\n",
    "XTENSION= 'TABLE   '\nBITPIX  =                    8\nNAXIS   =                    2\n"
    "NAXIS1  =                   10\nNAXIS2  =                    1\nPCOUNT  =                    "
    "0\n"
    "GCOUNT  =                    1\nTFIELDS =                    1\nTFORM1  = 'I10     '\n"
    "TBCOL1  =                    1\n",
    "XTENSION= 'FOREIGN '\n",
    "# HDU 1 in x.fits:\n",
    "\n\n",
    "",
};

}  // namespace

void zarn::tryInput(const std::string& input) {
    std::vector<std::string> headers;
    ZarnSys::split(input, "@", headers);
    std::string text;
    for (const std::string& header : headers) {
        const auto choice = static_cast<unsigned char>(header.front());
        text += BEGINNINGS[choice % BEGINNINGS.size()] + header.substr(1) + "\n";
        if ((choice & 8U) == 0) text += "END\n";
    }
    convert(text);
}
