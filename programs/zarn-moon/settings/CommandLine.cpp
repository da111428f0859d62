#include "zarn-moon/settings/CommandLine.h"

#include <cmath>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "shared/cli/Printable.h"
#include "shared/cli/UsageError.h"
#include "shared/sky/Calendar.h"

namespace {

constexpr char NONE = GenConfig::NO_SHORT_NAME;

const std::vector<OptionRow> OPTIONS = {
    {"bash-completion", NONE, "", "Write a completion script for bash", ""},
    {"dark-sky", NONE, "V", "Sky brightness without moon [V mag per square arc second]", "21.8"},
    {"date", 'd', "YYYY-MM-DD", "The night that begins on this date, local mean noon to noon",
     "the night of now"},
    {"equinox", NONE, "J2000|date", "Equinox of the targets' positions", "J2000"},
    {"extinction", 'k', "X", "Extinction at the zenith [mag per airmass]", "0.172"},
    {"format", NONE, "table|csv|json", "Form of the result", "table"},
    {"help", 'h', "", "Show this help", ""},
    {"local", NONE, "", "Show times of the process's time zone (TZ), too", ""},
    {"min-altitude", NONE, "DEG", "Mark each target's best window above this altitude", ""},
    {"mjd", NONE, "X", "One instant, a Modified Julian Date, instead of a night", ""},
    {"nights", NONE, "N", "One line a night for N nights", ""},
    {"output", 'o', "FILE", "Write the result to FILE, complete or not at all", "standard output"},
    {"place", 'p', "PLACE", "Latitude and longitude with their letters: \"42.5N 12.3E\"", ""},
    {"plot", NONE, "FILE", "Draw the night into FILE.png or FILE.svg, with gnuplot", ""},
    {"step", 's', "MINUTES", "Step of the night's table", "30"},
    {"target", 't', "RA DEC", "A position: \"83.82 -5.39\" or \"05:35:17.3 -05:23:28\"; may repeat",
     ""},
    {"targets", NONE, "FILE", "Targets from a file, a line each: name, RA, DEC", ""},
    {"telescope", 'T', "NAME", "A telescope's place: OLAN, VEK1, VEK2, VEK3 or VEK4", ""},
    {"version", 'V', "", "Show the version", ""},
};

// Options that exclude each other.
constexpr const char* EXCLUSIONS[][2] = {
    {"telescope", "place"},
    {"date", "mjd"},
    {"mjd", "nights"},
    {"mjd", "plot"},
    {"mjd", "step"},
    {"mjd", "min-altitude"},
    {"nights", "plot"},
    {"nights", "target"},
    {"nights", "targets"},
    {"nights", "step"},
    {"nights", "min-altitude"},
};

const char NOTES[] = R"(
Tells what the moon does to a night, or to targets in it: when it is up, how
bright it is, how far from each target, and how much light it adds there.

  zarn-moon --place "42.5N 12.3E"
  zarn-moon -T OLAN -d 2026-12-24 -t "05:35:17.3 -05:23:28" --min-altitude 30
  zarn-moon -T VEK1 --nights 30
  zarn-moon -T VEK1 --targets list.csv --format csv -o night.csv

Places and targets: degrees, or sexagesimal; right ascensions are in hours when
they are sexagesimal. Positions are of J2000 and are precessed to the night.
In a file of targets a line that begins with # does not count. The best window
is the longest stretch without moon if that lasts an hour, else the longest.

Times are universal time. Without a date it is the night of now, which begins at
local mean noon. Sun and moon rise and set with the upper limb: the centre at
-0.833 degrees. All altitudes are without refraction.

moon sky is what the moon adds at a target, sky is all of it, both in V
magnitudes per square arc second; the model knows neither twilight nor places
below the horizon, and is silent there.

)";

std::string optionAndReason(const char* option, const std::exception& error) {
    return std::string("option --") + option + ": " + error.what();
}

/// What `parse` makes of an option's value, its errors with the option's name before them.
template <typename Parse>
auto valueOf(const char* option, Parse parse) {
    try {
        return parse();
    } catch (const std::invalid_argument& error) {
        throw UsageError(optionAndReason(option, error));
    }
}

[[noreturn]] void failWord(const char* option, const std::string& value,
                           const std::string& expected) {
    throw UsageError(std::string("option --") + option + ": \"" + printable(value) + "\" is not " +
                     expected);
}

Format formatOf(const std::string& word) {
    if (word == "table") return Format::TABLE;
    if (word == "csv") return Format::CSV;
    if (word == "json") return Format::JSON;
    failWord("format", word, "table, csv or json");
}

bool endsIn(const std::string& text, const std::string& end) {
    return text.size() > end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// The theories hold for some decades around 2000; these are where they must not be asked.
constexpr double FIRST_MJD = 15385.0;  // 1901-01-01
constexpr double LAST_MJD = 124592.0;  // 2199-12-31

}  // namespace

CommandLine::CommandLine(std::vector<const char*> arguments)
    : OptionTable(std::move(arguments), OPTIONS) {}

double CommandLine::number(const char* option, double least, double most) const {
    return valueOf(option, [&] { return parseNumber(value(option), least, most); });
}

void CommandLine::parseSite(Settings& settings) const {
    if (given("telescope")) {
        settings.site = valueOf("telescope", [&] { return telescopeSite(value("telescope")); });
    } else if (given("place")) {
        settings.site = valueOf("place", [&] { return placeSite(value("place")); });
    } else {
        throw UsageError("neither --telescope nor --place is given");
    }
}

void CommandLine::parseTargets(Settings& settings) const {
    for (const std::string& text : values("target")) {
        const Position place = valueOf("target", [&] { return parsePosition(text); });
        settings.targets.push_back({text, place});
    }
    for (const std::string& fileName : values("targets")) {
        for (Target& target : readTargets(fileName)) settings.targets.push_back(std::move(target));
    }
    if (given("equinox")) {
        const std::string& equinox = value("equinox");
        if (equinox != "J2000" && equinox != "date") failWord("equinox", equinox, "J2000 or date");
        settings.equinoxOfDate = equinox == "date";
    }
    if (given("min-altitude")) {
        constexpr double ZENITH = 90.0;
        if (settings.targets.empty()) throw UsageError("--min-altitude needs a target");
        settings.minAltitude = number("min-altitude", 0.0, ZENITH);
    }
}

void CommandLine::parseTimes(Settings& settings, double now) const {
    constexpr double MOST_NIGHTS = 3700.0;  // ten years
    constexpr double LEAST_STEP = 0.1;      // [minutes]
    constexpr double MOST_STEP = 720.0;     // [minutes]
    settings.date = nightOf(settings.site, now);
    if (given("date")) {
        settings.date = valueOf("date", [&] { return mjdOfDate(value("date")); });
        if (settings.date < FIRST_MJD || settings.date > LAST_MJD)
            failWord("date", value("date"), "from 1901-01-01 to 2199-12-31");
    }
    if (given("mjd")) settings.mjd = number("mjd", FIRST_MJD, LAST_MJD);
    if (given("step")) settings.step = number("step", LEAST_STEP, MOST_STEP);
    if (given("nights")) {
        const double nights = number("nights", 1.0, MOST_NIGHTS);
        if (nights != std::floor(nights)) failWord("nights", value("nights"), "a whole number");
        settings.nights = static_cast<unsigned>(nights);
        if (settings.date + nights - 1.0 > LAST_MJD)
            failWord("nights", value("nights"), "so few that they end by 2199-12-31");
    }
}

void CommandLine::parseResults(Settings& settings) const {
    constexpr double MOST_EXTINCTION = 10.0;
    constexpr double BRIGHTEST = 10.0;
    constexpr double DARKEST = 30.0;
    if (given("extinction")) settings.extinction = number("extinction", 0.0, MOST_EXTINCTION);
    if (given("dark-sky")) settings.darkSky = number("dark-sky", BRIGHTEST, DARKEST);
    if (given("format")) settings.format = formatOf(value("format"));
    settings.local = given("local");
    if (given("output")) settings.output = value("output");
    if (given("plot")) settings.plot = value("plot");
    if (given("output") && settings.output.empty()) failWord("output", "", "a file's name");
    if (given("plot") && !endsIn(settings.plot, ".png") && !endsIn(settings.plot, ".svg"))
        failWord("plot", settings.plot, "a name that ends in .png or .svg");
    if (given("plot") && settings.plot == settings.output)
        throw UsageError("--plot and --output name the same file");
    if (given("plot") && settings.targets.size() > MOST_DRAWN_TARGETS) {
        throw UsageError("--plot: more than " + std::to_string(MOST_DRAWN_TARGETS) +
                         " targets cannot be told apart in a picture");
    }
}

void CommandLine::checkTogether() const {
    if (!argumentVect_.empty())
        throw UsageError("unexpected argument \"" + printable(argumentVect_.front()) + "\"");
    for (const auto& [one, other] : EXCLUSIONS) {
        if (given(one) && given(other))
            throw UsageError(std::string("--") + one + " and --" + other + " exclude each other");
    }
}

Settings CommandLine::parse(double now) {
    if (parseCommandLine(true) != 0) throw UsageError("the command line is wrong");
    Settings settings;
    settings.help = given("help");
    settings.version = given("version");
    settings.bashCompletion = given("bash-completion");
    if (settings.help || settings.version || settings.bashCompletion) return settings;
    checkTogether();
    parseSite(settings);
    parseTimes(settings, now);
    parseTargets(settings);
    parseResults(settings);
    return settings;
}

void CommandLine::displayFullHelp(const std::string& ruleOfWords) const {
    displayHelp();
    std::cout << NOTES << ruleOfWords
              << "\n\nExit status: 0 done; 1 the result could not be made; 2 wrong usage.\n"
              << std::flush;
}
