#include "zarnsys/util/WexoTime.h"

#include <ace/Date_Time.h>

#include <cstring>
#include <iomanip>
#include <locale>
#include <sstream>

namespace {

// The what and ident tools find this text in the built library.
const char rcsId[] = "@(#) $Id: WexoTime.cpp,v " ZARNSYS_VERSION " " ZARNSYS_SOURCE_DATE " $";
// An optimiser drops a text that nothing reads; this pointer must stay, and the text with it.
[[gnu::used]] const char* const use_rcsId = rcsId;

constexpr int YEAR_WIDTH = 4;
constexpr int FIELD_WIDTH = 2;  // month, day, hour, minute, second
constexpr int MICROSECOND_WIDTH = 6;

/// A stream that groups no digits, whatever the program's locale, and that does not leave out what
/// there is no memory for, but throws.
std::ostringstream plainStream() {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream.exceptions(std::ios::badbit);
    return stream;
}

}  // namespace

std::string WexoTime::asISOTimeString(const ACE_Time_Value& timeValue) {
    const ACE_Date_Time time(timeValue);
    std::ostringstream text = plainStream();
    text << std::right << std::setfill('0');
    text << std::setw(YEAR_WIDTH) << time.year();
    text << '-' << std::setw(FIELD_WIDTH) << time.month();
    text << '-' << std::setw(FIELD_WIDTH) << time.day();
    text << 'T' << std::setw(FIELD_WIDTH) << time.hour();
    text << ':' << std::setw(FIELD_WIDTH) << time.minute();
    text << ':' << std::setw(FIELD_WIDTH) << time.second();
    text << '.' << std::setw(MICROSECOND_WIDTH) << time.microsec();
    return text.str();
}

ACE_TCHAR* WexoTime::asISOTimeString(const ACE_Time_Value& timeValue, ACE_TCHAR* const timeString) {
    // NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.strcpy): the size is the caller's matter
    return std::strcpy(timeString, asISOTimeString(timeValue).c_str());
}

std::string WexoTime::asUnixTimeString(const ACE_Time_Value& timeValue) {
    std::ostringstream text = plainStream();
    text << timeValue.sec() << '.';
    text << std::right << std::setfill('0') << std::setw(MICROSECOND_WIDTH) << timeValue.usec();
    return text.str();
}
