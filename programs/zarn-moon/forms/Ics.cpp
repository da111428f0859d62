#include <algorithm>
#include <cstdint>
#include <iomanip>
#include <map>
#include <stdexcept>

#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/Report.h"
#include "zarn-moon/forms/Texts.h"

namespace zarn::moon {

namespace {

/// A line of a calendar, cut into pieces of at most 75 octets; none of them ends within a
/// character.
std::string folded(const std::string& line) {
    constexpr std::size_t MOST_OCTETS = 75;
    const auto continuesCharacter = [](char c) {
        constexpr unsigned FIRST_BITS = 0xC0;
        constexpr unsigned CONTINUATION = 0x80;
        return (static_cast<unsigned char>(c) & FIRST_BITS) == CONTINUATION;
    };
    std::string text;
    std::size_t room = MOST_OCTETS;
    for (std::size_t begin = 0; begin < line.size();) {
        std::size_t end = std::min(begin + room, line.size());
        while (continuesCharacter(line[end])) --end;  // after the last one stands '\0'
        text += (begin > 0 ? " " : "") + line.substr(begin, end - begin) + "\r\n";
        begin = end;
        room = MOST_OCTETS - 1;  // after the blank
    }
    return text;
}

/// A text as a value of a calendar. A name's control characters become printable before.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : printable(text)) {
        if (c == '\\' || c == ';' || c == ',') result += '\\';
        result += c;
    }
    return result;
}

/// The nearest minute as YYYYMMDDThhmmssZ, or an instant to the second.
std::string stampOf(const std::string& iso) {
    std::string text;
    for (const char c : iso) {
        if (c != '-' && c != ':') text += c;
    }
    return text + "Z";
}
std::string minuteStamp(double mjd) { return stampOf(minuteOf(mjd) + ":00"); }

/// A number for a text, the same on every machine: FNV-1a, 64 bits.
std::string hashOf(const std::string& text) {
    constexpr std::uint64_t BASIS = 14695981039346656037U;
    constexpr std::uint64_t PRIME = 1099511628211U;
    std::uint64_t hash = BASIS;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * PRIME;
    TextWriter hex;
    hex << std::hex << std::setfill('0') << std::setw(2 * sizeof hash) << hash;
    return hex.str();
}

struct Entry {
    std::string night;  ///< date that it begins on
    std::string of;     ///< whose window it is, different from all others of the night
    Window window;
    std::string summary;
    std::string description;
};

/// An event. Its name stays the same from run to run, so that a calendar renews what it has.
std::string eventOf(const Settings& settings, const Entry& entry) {
    const std::string place = coordinates(settings.site);
    const std::string lines[] = {
        "BEGIN:VEVENT",
        "UID:" + entry.night + "-" + hashOf(place + "|" + entry.of) + "@zarn-moon",
        "DTSTAMP:" + stampOf(secondOf(settings.now)),
        "DTSTART:" + minuteStamp(entry.window.begin),
        "DTEND:" + minuteStamp(entry.window.end),
        "SUMMARY:" + escaped(entry.summary),
        "DESCRIPTION:" + escaped(entry.description),
        "LOCATION:" + escaped(settings.site.name + " (" + place + ")"),
        "GEO:" + fixed(settings.site.latitude, ANGLE_DECIMALS) + ";" +
            fixed(-settings.site.longitude, ANGLE_DECIMALS),
        "TRANSP:TRANSPARENT",
        "END:VEVENT",
    };
    std::string text;
    for (const std::string& line : lines) text += folded(line);
    return text;
}

std::string litText(const NightLine& night) {
    return "moon " + percent(night.summary.illumination, 0) + " % lit";
}

std::string darkEvents(const Report& report, std::size_t n) {
    const NightLine& night = report.nights[n];
    std::string text;
    std::size_t number = 0;
    for (const Window& window : report.darkWindows[n]) {
        text += eventOf(report.settings,
                        {dateOf(night.date), "dark " + std::to_string(++number), window,
                         "Dark: no moon, no twilight", litText(night) + ", below the horizon"});
    }
    return text;
}

/// A target's best window in the n-th night, and what is known of it.
Entry entryOf(const Report& report, std::size_t n, std::size_t target) {
    const std::string& name = report.settings.targets[target].name;
    const Position& position = report.settings.targets[target].position;
    const NightLine& night = report.nights[n];
    const bool isSeason = !report.seasons.empty();
    const Window window = isSeason ? report.seasons[target][n].best : report.windows[target];
    std::string description = litText(night) + (window.moonDown ? ", below the horizon" : ", up");
    if (isSeason) {
        const TargetNight& values = report.seasons[target][n];
        description += "; " + fixed(values.darkEquivalentHours, HOURS_DECIMALS) +
                       " dark-equivalent hours of " + fixed(values.usableHours, HOURS_DECIMALS) +
                       " usable";
        if (values.rank > 0) description += "; rank " + std::to_string(values.rank);
    }
    return {dateOf(night.date),
            "target " + name + "|" + fixed(position.ra, POSITION_DECIMALS) + "|" +
                fixed(position.dec, POSITION_DECIMALS),
            window, name + ": best window", description};
}

std::string targetEvents(const Report& report, std::size_t n) {
    std::string text;
    std::map<std::string, unsigned> seen;  // a target may be given twice
    for (std::size_t target = 0; target < report.settings.targets.size(); ++target) {
        Entry entry = entryOf(report, n, target);
        if (const unsigned number = ++seen[entry.of]; number > 1)
            entry.of += "|" + std::to_string(number);
        if (entry.window.begin != entry.window.end) text += eventOf(report.settings, entry);
    }
    return text;
}

}  // namespace

std::string icsOf(const Report& report) {
    std::string events;
    for (std::size_t n = 0; n < report.nights.size(); ++n)
        events += darkEvents(report, n) + targetEvents(report, n);
    if (events.empty()) {
        throw std::runtime_error(
            "there is no dark or best window: a calendar needs one event at least");
    }
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//zarn-moon//" ZARNSYS_VERSION "//EN\r\n" +
           events + "END:VCALENDAR\r\n";
}

}  // namespace zarn::moon
