#include "zarn-moon/settings/CommandLine.h"

#include <algorithm>
#include <iostream>
#include <iterator>

#include "shared/cli/Printable.h"
#include "shared/cli/UsageError.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/settings/HelpNotes.h"
#include "zarn-moon/settings/SettingTable.h"
#include "zarn-moon/settings/TimeZone.h"

namespace zarn::moon {

namespace {

std::vector<const char*> pointersTo(const std::vector<std::string>& words) {
    std::vector<const char*> pointers;
    pointers.reserve(words.size());
    for (const std::string& word : words) pointers.push_back(word.c_str());
    return pointers;
}

void checkNights(const Settings& settings) {
    if (settings.nights > 0 && settings.date + settings.nights - 1.0 > LAST_MJD) {
        throw UsageError("option --nights: " + std::to_string(settings.nights) +
                         " nights from this date end after " + dateOf(LAST_MJD));
    }
}

void checkMaxSky(const Settings& settings) {
    if (settings.maxSky && *settings.maxSky > settings.darkSky)
        throw UsageError("--max-sky is darker than the sky without moon, " +
                         shortest(settings.darkSky));
}

void checkPlot(const Settings& settings) {
    if (settings.plot.empty()) return;
    if (settings.plot == settings.output)
        throw UsageError("--plot and --output name the same file");
    if (settings.nights <= 1 && settings.targets.size() > MOST_DRAWN_TARGETS) {
        throw UsageError("--plot: more than " + std::to_string(MOST_DRAWN_TARGETS) +
                         " targets cannot be told apart in a picture");
    }
}

}  // namespace

CommandLine::CommandLine(const std::vector<const char*>& arguments)
    : CommandLine(markDashes(arguments,
                             optionsOf(std::vector(std::begin(SETTINGS), std::end(SETTINGS))))) {}

CommandLine::CommandLine(const ParsableArguments& arguments)
    : SettingsParser(pointersTo(arguments.words), SETTINGS), problem_(arguments.problem) {}

void CommandLine::parseWords() {
    if (!problem_.empty()) throw UsageError(problem_);
    if (parseCommandLine(true) != 0) throw UsageError("the command line is wrong");
    for (auto& [name, option] : optionMap_)
        std::transform(option.availValues_.begin(), option.availValues_.end(),
                       option.availValues_.begin(), unmarked);
}

void CommandLine::checkTogether() const {
    if (!argumentVect_.empty())
        throw UsageError("unexpected argument \"" + printable(argumentVect_.front()) + "\"");
    for (const auto& [one, other] : EXCLUSIONS) {
        if (given(one) && given(other))
            throw UsageError(std::string("--") + one + " and --" + other + " exclude each other");
    }
    if (!given("telescope") && !given("place") && !given("site"))
        throw UsageError("none of --telescope, --place and --site is given");
    if (!given("target") && !given("targets")) checkWithoutTarget();
}

void CommandLine::checkWithoutTarget() const {
    for (const char* const limit : LIMITS) {
        if (given(limit)) throw UsageError(std::string("--") + limit + " needs a target");
    }
    if (given("nights") && given("step")) throw UsageError("--nights with --step needs a target");
}

Settings CommandLine::parse(double now) {
    parseWords();
    Settings settings;
    readFlags(settings);
    if (settings.help || settings.version || settings.completion) return settings;
    settings.sites = values("sites");
    if (settings.listSites) return settings;
    checkTogether();
    readOptions(settings);
    if (!given("date")) settings.date = nightOf(settings.site, now);
    if (settings.local) useTimeZone(settings.timeZone);
    if (settings.nights > 0 && !given("step")) settings.step = SEMESTER_STEP;
    settings.now = now;
    if (settings.mjd && settings.format == Format::ICS)
        throw UsageError("--format ics needs a night, not --mjd");
    checkMaxSky(settings);
    checkNights(settings);
    checkPlot(settings);
    return settings;
}

void CommandLine::displayFullHelp(const std::string& ruleOfWords) const {
    displayOptions();
    std::cout << HELP_NOTES << ruleOfWords
              << "\n\nExit status: 0 success; 1 the result could not be produced; 2 wrong usage.\n"
              << std::flush;
}

}  // namespace zarn::moon
