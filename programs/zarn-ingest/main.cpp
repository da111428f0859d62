/// zarn-ingest: header text files in, FITS files out.

#include <ace/Log_Msg.h>
#include <ace/Version.h>
#include <fitsio.h>
#include <malloc.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>

#include "shared/cli/Printable.h"
#include "shared/cli/Process.h"
#include "shared/cli/Reason.h"
#include "shared/cli/UsageError.h"
#include "zarn-ingest/desk/StatusForms.h"
#include "zarn-ingest/desk/Verification.h"
#include "zarn-ingest/report/Reporter.h"
#include "zarn-ingest/report/RollingLog.h"
#include "zarn-ingest/run/Batch.h"
#include "zarn-ingest/run/Service.h"
#include "zarn-ingest/run/StopSignals.h"
#include "zarn-ingest/settings/CommandLine.h"

// CFITSIO gives its version as tokens.
#define TEXT_OF(tokens) TEXT(tokens)
#define TEXT(tokens) #tokens

namespace zarn::ingest {

namespace {

void displayVersion() {
    std::cout << "zarn-ingest " ZARNSYS_VERSION
                 " (CFITSIO " TEXT_OF(CFITSIO_VERSION) ", ACE " ACE_VERSION ")\n";
}

Reporter::Level levelOf(const Settings& settings) {
    if (settings.quiet) return Reporter::Level::QUIET;
    return settings.verbose ? Reporter::Level::VERBOSE : Reporter::Level::NORMAL;
}

/// Lets the memory of one file serve the next. Its return to the system and the pages handed out
/// anew would take a fifth of the time of a file.
void keepMemory() {
    constexpr int ONE_FILE = 1 << 20;  // most files take less [bytes]
    ::mallopt(M_MMAP_THRESHOLD, ONE_FILE);
    ::mallopt(M_TRIM_THRESHOLD, 4 * ONE_FILE);
}

/// Converts what the settings ask for, and gives the exit status.
int work(const Settings& settings, const StopSignals& signals) {
    Reporter reporter(levelOf(settings));
    std::unique_ptr<RollingLog> log;
    if (!settings.logFile.empty() && !settings.dryRun) {
        if (!settings.verbose) setPriorityMask(ERROR_AND_ABOVE | LM_INFO);
        log = std::make_unique<RollingLog>(settings);
        reporter.useLog();
    }
    if (!settings.report.empty() && !settings.dryRun) reporter.useReport(settings.report);
    bool whole = true;
    if (!settings.isService()) {
        whole = Batch(settings, signals, reporter).run();
    } else if (Service::awaitIncoming(settings, signals, reporter)) {
        whole = Service(settings, signals, reporter).run();
    }
    reporter.summary(settings.dryRun ? "would be converted" : "converted", signals.received());
    // A hang-up does not end a service for good: systemd starts it again, and it reads its settings
    // anew.
    if (settings.watch && signals.received() != SIGHUP) return EXIT_SUCCESS;
    if (signals.received() != 0) return EXIT_SIGNAL + signals.received();
    return whole && !reporter.anyFailed() ? EXIT_SUCCESS : EXIT_SOME_FAILED;
}

/// Shows a service's status, and gives the exit status.
int showStatus(const Settings& settings) {
    const Status status = statusOf(settings);
    std::cout << formatted(status, settings);
    return status.problems.empty() ? EXIT_SUCCESS : EXIT_SOME_FAILED;
}

/// Looks through an archive, and gives the exit status.
int verify(const Settings& settings, const StopSignals& signals) {
    const bool whole = Verification(settings, signals).run();
    if (signals.received() != 0) return EXIT_SIGNAL + signals.received();
    return whole ? EXIT_SUCCESS : EXIT_SOME_FAILED;
}

/// Does what the command line asks for, and gives the exit status.
int run(CommandLine& commandLine, const StopSignals& signals) {
    const Settings settings = commandLine.parse();
    if (settings.help) {
        commandLine.displayFullHelp();
        return EXIT_SUCCESS;
    }
    if (settings.version) {
        displayVersion();
        return EXIT_SUCCESS;
    }
    if (settings.completion) {
        std::cout << commandLine.completion("zarn-ingest");
        return EXIT_SUCCESS;
    }
    if (settings.verbose) setPriorityMask(~0UL);
    commandLine.displayCommandLine();
    if (settings.status) return showStatus(settings);
    if (settings.verify) return verify(settings, signals);
    return work(settings, signals);
}

/// Runs the program, reports an error that ends it, and gives the exit status.
int runReporting(int argc, char** argv) {
    try {
        CommandLine commandLine(argumentsOf("zarn-ingest", argc, argv));
        const StopSignals signals;
        return run(commandLine, signals);
    } catch (const UsageError& error) {
        std::cerr << std::string("zarn-ingest: ") + error.what() + "; see zarn-ingest --help\n";
        return EXIT_WRONG_USAGE;
    } catch (const std::exception& error) {
        std::cerr << "zarn-ingest: " + printable(reasonOf(error)) + "\n";
    }
    return EXIT_SOME_FAILED;
}

int runProgram(int argc, char** argv) {
    keepMemory();
    reportMissingMemory();
    reserveStandardStreams();
    ignoreWriteSignals();
    setPriorityMask(ERROR_AND_ABOVE);
    return finishOutput("zarn-ingest", runReporting(argc, argv));
}

}  // namespace

}  // namespace zarn::ingest

int main(int argc, char** argv) { return zarn::ingest::runProgram(argc, argv); }
