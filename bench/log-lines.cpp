/// Counts what arrives in a rolling log: log-lines DIRECTORY LINES FILES_KEPT
///
/// Four threads write LINES lines together while the log rolls over once a second. Afterwards every
/// line is looked for in the files that are left, and the figures are printed.

#include <ace/Log_Msg.h>
#include <ace/Thread_Manager.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/WexoLogConfig.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr unsigned THREADS = 4;
constexpr std::chrono::seconds DURATION{26};  // long enough to roll over 20 times at 1 s each
constexpr unsigned BURST = 50;                // lines between two looks at the clock
constexpr int ROLL_ABOVE = 100;               // [kB]
constexpr int EVERY_SECOND = 1;

unsigned long linesPerThread = 0;

/// Writes this thread's lines, spread over the duration. They are numbered.
void* writeLines(void* number) {
    const unsigned thread = *static_cast<unsigned*>(number);
    const auto start = std::chrono::steady_clock::now();
    ACE_Log_Msg* log = ACE_Log_Msg::instance();
    for (unsigned long i = 0; i < linesPerThread; ++i) {
        log->log(LM_INFO, "%D INFO  [ %t ] thread %u line %u\n", thread, static_cast<unsigned>(i));
        if (i % BURST == 0)
            std::this_thread::sleep_until(start +
                                          DURATION * static_cast<double>(i) / linesPerThread);
    }
    return nullptr;
}

/// The log's files, oldest first: the numbered ones by time of their last line, then the present.
std::vector<std::string> filesOf(const std::string& log) {
    std::vector<std::string> files;
    FileIO(log + ".*", true, false).match(files, 0);
    std::map<std::string, std::string> byFirstLine;
    for (const std::string& file : files) {
        std::string line;
        std::ifstream stream(file);
        std::getline(stream, line);
        byFirstLine[line] = file;
    }
    files.clear();
    for (const auto& [line, file] : byFirstLine) files.push_back(file);
    files.push_back(log);
    return files;
}

struct Count {
    unsigned long lines = 0;
    unsigned long doubled = 0;
    unsigned long disordered = 0;
};

/// Counts the lines; what one thread wrote must come in its order, each number once.
Count countLines(const std::vector<std::string>& files) {
    Count count;
    std::vector<std::vector<bool>> seen(THREADS, std::vector<bool>(linesPerThread));
    std::vector<long> last(THREADS, -1);
    for (const std::string& file : files) {
        std::ifstream stream(file);
        for (std::string line; std::getline(stream, line);) {
            const std::size_t at = line.find("thread ");
            if (at == std::string::npos) continue;  // the library's own lines
            char* end = nullptr;
            const unsigned long thread = std::strtoul(line.c_str() + at + 7, &end, 10);
            const long number = std::strtol(end + 6, nullptr, 10);
            ++count.lines;
            if (seen[thread][static_cast<std::size_t>(number)]) ++count.doubled;
            if (number <= last[thread]) ++count.disordered;
            seen[thread][static_cast<std::size_t>(number)] = true;
            last[thread] = number;
        }
    }
    return count;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const std::string log = std::string(argv[1]) + "/lines.log";
    linesPerThread = std::strtoul(argv[2], nullptr, 10) / THREADS;
    const int kept = static_cast<int>(std::strtol(argv[3], nullptr, 10));
    WexoLogConfig config;
    config.setFileName(log);
    config.setMaxFileSize(ROLL_ABOVE);
    config.setMaxNumFiles(kept);
    config.setInterval(EVERY_SECOND);
    if (config.configure() != 0 || WexoLogConfig::runReactorEventLoop() != 0) return 1;
    unsigned numbers[THREADS];
    std::vector<ACE_thread_t> writers(THREADS);
    for (unsigned i = 0; i < THREADS; ++i) {
        numbers[i] = i;
        ACE_Thread_Manager::instance()->spawn(writeLines, &numbers[i], THR_NEW_LWP | THR_JOINABLE,
                                              &writers[i]);
    }
    for (const ACE_thread_t writer : writers) ACE_Thread_Manager::instance()->join(writer);
    WexoLogConfig::endReactorEventLoop();
    ACE_Thread_Manager::instance()->wait();

    const std::vector<std::string> files = filesOf(log);
    const Count count = countLines(files);
    std::cout << THREADS * linesPerThread << " lines written by " << THREADS << " threads, "
              << files.size() << " files (" << kept << " allowed): " << count.lines
              << " lines found, " << count.doubled << " doubled, " << count.disordered
              << " out of order\n";
    const bool whole = count.lines == THREADS * linesPerThread;
    const bool allowed = files.size() <= static_cast<std::size_t>(kept);
    return allowed && count.doubled == 0 && count.disordered == 0 && (whole || kept < 20) ? 0 : 1;
}
