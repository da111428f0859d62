/// zarn-ingest: header text files in, FITS files out.

#include <ace/Log_Msg.h>
#include <ace/Version.h>
#include <fitsio.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/ZarnSysEx.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>

#include "Converter.h"
#include "IngestOptions.h"
#include "Inputs.h"
#include "OutputDirectory.h"
#include "Reporter.h"
#include "StopSignals.h"

namespace {

constexpr int EXIT_SOME_FAILED = 1;
constexpr int EXIT_WRONG_USAGE = 2;
constexpr int EXIT_SIGNAL = 128;  // plus the signal's number
constexpr u_long ERROR_AND_ABOVE = LM_ERROR | LM_CRITICAL | LM_ALERT | LM_EMERGENCY;

/// The process's arguments under the program's own name, whatever path it was started by.
std::vector<const char*> asZarnIngest(int argc, char** argv) {
    std::vector<const char*> arguments(argv, argv + argc);
    if (arguments.empty()) arguments.resize(1);
    arguments.front() = "zarn-ingest";
    return arguments;
}

/// Makes a full pipe, disk or quota an error of the write concerned instead of the process's end.
void ignoreWriteSignals() {
    for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
}

void displayVersion() {
    std::cout << "zarn-ingest " ZARNSYS_VERSION " (CFITSIO " << CFITSIO_MAJOR << '.'
              << CFITSIO_MINOR << '.' << CFITSIO_MICRO << ", ACE " ACE_VERSION ")\n";
}

Reporter::Level levelOf(const IngestOptions& options) {
    if (options.quiet) return Reporter::Level::QUIET;
    return options.verbose ? Reporter::Level::VERBOSE : Reporter::Level::NORMAL;
}

/// Opens the output directory; a dry run goes without one that does not exist.
void openOutput(const IngestOptions& options, std::optional<OutputDirectory>& directory) {
    if (options.dryRun && !FileIO(options.outputDir, true, false).exists()) {
        std::cout << "would create the directory " + printable(options.outputDir) + "\n";
        return;
    }
    directory.emplace(options.outputDir, !options.dryRun);
}

int convertAll(const IngestOptions& options) {
    Reporter reporter(levelOf(options));
    StopSignals signals;
    std::optional<OutputDirectory> directory;
    openOutput(options, directory);
    const std::vector<Input> inputs = collectInputs(options, signals);
    Converter converter(options, directory, inputs, reporter);
    reporter.begin(inputs.size());
    for (const Input& input : inputs) {
        if (signals.received() != 0) break;
        converter.convert(input);
    }
    reporter.summary(options.dryRun ? "would be converted" : "converted", signals.received());
    if (signals.received() != 0) return EXIT_SIGNAL + signals.received();
    return reporter.anyFailed() ? EXIT_SOME_FAILED : EXIT_SUCCESS;
}

int run(IngestConfig& config) {
    const IngestOptions options = config.parse();
    if (options.help) {
        config.displayFullHelp();
        return EXIT_SUCCESS;
    }
    if (options.version) {
        displayVersion();
        return EXIT_SUCCESS;
    }
    if (options.verbose) ACE_Log_Msg::instance()->priority_mask(~0UL, ACE_Log_Msg::PROCESS);
    config.displayCommandLine();
    return convertAll(options);
}

/// Runs the program and reports what ends it as a whole.
int runReporting(IngestConfig& config) {
    try {
        return run(config);
    } catch (const UsageError& error) {
        std::cerr << std::string("zarn-ingest: ") + error.what() + "; see zarn-ingest --help\n";
        return EXIT_WRONG_USAGE;
    } catch (ZarnSysEx& error) {
        std::cerr << "zarn-ingest: " + printable(error.what()) + "\n";
    } catch (const std::exception& error) {
        std::cerr << "zarn-ingest: " + printable(error.what()) + "\n";
    }
    return EXIT_SOME_FAILED;
}

}  // namespace

int main(int argc, char** argv) {
    ignoreWriteSignals();
    ACE_Log_Msg::instance()->priority_mask(ERROR_AND_ABOVE, ACE_Log_Msg::PROCESS);
    IngestConfig config(asZarnIngest(argc, argv));
    const int status = runReporting(config);
    if (!std::cout.flush()) {
        std::cerr << "zarn-ingest: standard output cannot be written\n";
        return EXIT_SOME_FAILED;
    }
    return status;
}
