/// zarn-moon: shows how the moon affects a night of observing.

#include <zarnsys/util/ZarnSysEx.h>

#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "shared/cli/Printable.h"
#include "shared/cli/Process.h"
#include "shared/cli/UsageError.h"
#include "shared/files/ResultFile.h"
#include "shared/sky/Calendar.h"
#include "zarn-moon/forms/Plot.h"
#include "zarn-moon/forms/Report.h"
#include "zarn-moon/night/Night.h"
#include "zarn-moon/settings/CommandLine.h"
#include "zarn-moon/settings/Sites.h"

namespace zarn::moon {

namespace {

/// The present instant [MJD].
double presentMjd() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return MJD_OF_EPOCH + std::chrono::duration<double>(now).count() / SECONDS_PER_DAY;
}

/// The report in the format that the settings ask for.
std::string formatted(const Report& report) {
    switch (report.settings.format) {
        case Format::CSV:
            return csvOf(report);
        case Format::JSON:
            return jsonOf(report);
        case Format::ICS:
            return icsOf(report);
        case Format::TABLE:
            break;
    }
    return tableOf(report);
}

/// Lists the sites, each with its name before a tab: completion takes the names from here.
void listSites(const Settings& settings) {
    std::string list;
    for (const KnownSite& known : sitesIn(settings.sites))
        list += known.site.name + "\t" + coordinates(known.site) + "\n";
    if (list.empty())
        std::cerr << "zarn-moon: there are no sites yet; zarn-moon-sites(5) says how to add them\n";
    std::cout << list;
}

/// Does what the command line asks for. Results are computed before anything is written.
void run(CommandLine& commandLine) {
    const Settings settings = commandLine.parse(presentMjd());
    if (settings.help) return commandLine.displayFullHelp(RULE_OF_WORDS);
    if (settings.version) {
        std::cout << "zarn-moon " ZARNSYS_VERSION "\n";
        return;
    }
    if (settings.completion) {
        std::cout << commandLine.completion("zarn-moon");
        return;
    }
    if (settings.listSites) return listSites(settings);
    const Report report = makeReport(settings);
    const std::string result = formatted(report);
    const std::string picture = settings.plot.empty() ? "" : draw(report);
    if (settings.output.empty()) {
        std::cout << result << std::flush;
    } else {
        writeWhole(settings.output, result);
    }
    if (!settings.plot.empty()) writeWhole(settings.plot, picture);
}

/// Runs the program, reports an error that ends it, and gives the exit status.
int runReporting(int argc, char** argv) {
    try {
        CommandLine commandLine(argumentsOf("zarn-moon", argc, argv));
        run(commandLine);
        return EXIT_SUCCESS;
    } catch (const UsageError& error) {
        std::cerr << std::string("zarn-moon: ") + error.what() + "; see zarn-moon --help\n";
        return EXIT_WRONG_USAGE;
    } catch (const std::exception& error) {
        std::cerr << "zarn-moon: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
}

int runProgram(int argc, char** argv) {
    reportMissingMemory();
    reserveStandardStreams();
    ignoreWriteSignals();
    setPriorityMask(ERROR_AND_ABOVE);
    return finishOutput("zarn-moon", runReporting(argc, argv));
}

}  // namespace

}  // namespace zarn::moon

int main(int argc, char** argv) { return zarn::moon::runProgram(argc, argv); }
