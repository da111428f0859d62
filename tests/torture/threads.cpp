/// Runs what threads and processes may do at once.
///   threads calls ROUNDS        8 threads call what may be called by several, while the log rolls
///   threads directories ROUNDS  two processes create one directory, ROUNDS times
///   threads reactor CYCLES      starts and ends the reactor's loop, also during a handler
/// Everything happens in a new directory. Ends with a line of the result; status 1: a fault.
#include <ace/Event_Handler.h>
#include <ace/Reactor.h>
#include <ace/Thread_Manager.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zarnsys/util/Astronomy.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/FitsUtils.h>
#include <zarnsys/util/MoonGrid.h>
#include <zarnsys/util/StringUtils.h>
#include <zarnsys/util/Utils.h>
#include <zarnsys/util/WexoLogConfig.h>
#include <zarnsys/util/WexoTime.h>
#include <zarnsys/util/ZarnMoonVal.h>
#include <zarnsys/util/ZarnSysEx.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <new>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/TempDir.h"

namespace {

constexpr int THREADS = 8;
constexpr double JD = 2461000.25;  // November 2025
constexpr double MJD = 61010;      // from here on, the moon is up at midnight for a week
const std::string CARDS = "OBJECT  = 'Field 17'\nEND\n";

// What a thread calls, in a directory of its own; all that the calls give becomes one text.

std::string callAstronomy(int thread) {
    const double jd = JD + thread;
    double ra = 0;
    double dec = 0;
    double other = 0;
    int lunation = 0;
    std::ostringstream text;
    lpsun(jd, &ra, &dec);
    text << lst(jd, 1.25) << ' ' << adj_time(-13) << ' ' << atan_circ(1, thread) << ' ' << ra << ' '
         << dec << ' ' << altit(dec, 1, 42, &other) << ' ' << other << ' '
         << subtend(ra, dec, 1, thread);
    lpmoon(jd, 42, 3, &ra, &dec, &other);
    text << ' ' << ra << ' ' << dec << ' ' << other << ' ' << lun_age(jd, &lunation);
    flmoon(lunation, 2, &other);
    text << ' ' << lunation << ' ' << other << ' ' << lunskybright(60, 50, 0.172, 40, 45, 60);
    return text.str();
}

std::string callMoon(int thread) {
    std::ostringstream text;
    ZarnMoonVal(83.82, -5.39, MJD + thread, OLAN).print(text);
    const Place place = telescopePlace(OLAN);
    const std::vector<SkyPosition> targets{{83.82, -5.39}, {10.68, 41.27}};
    SkyConditions conditions;
    conditions.extinction = 0.17;
    conditions.darkSky = 21.6;
    text << computeMoonGrid(targets, {MJD + thread}, place).separation(0, 1)
         << computeSkyGrid(targets, {MJD + thread}, place, conditions).sky(0, 1);
    return text.str();
}

std::string callTexts(int thread) {
    std::vector<std::string> words;
    ZarnSys::split("a,b,c" + std::to_string(thread), ",", words);
    const ACE_Time_Value time(1000000000 + thread);
    float total = 0;
    float available = 0;
    const int found = ZarnSys::getFilesystemInfo(".", &total, &available);
    ZarnSys::sleep(0);
    std::array<char, 27> text{};
    return words.back() + ZarnSys::lower("ABC") + WexoTime::asISOTimeString(time) +
           WexoTime::asISOTimeString(time, text.data()) + WexoTime::asUnixTimeString(time) +
           std::to_string(found);
}

std::string callFiles(int thread) {
    const std::string folder = "thread" + std::to_string(thread);
    std::stringstream text;
    FitsFile* fits = nullptr;
    text << ZarnSysFits::openFitsFile(fits, folder + "/none", READONLY);
    FileIO file(folder + "/text", true, true);
    file.write(CARDS).rename(folder + "/cards").load(text);
    std::vector<std::string> names;
    FileIO(folder + "/c*", true, false).match(names, 0);
    text << names.size() << file.isFile() << file.exists() << file.pathExists()
         << ZarnSysFits::hdr2fits(&fits, folder + "/cards", "!" + folder + "/x.fits")
         << ZarnSysFits::closeFitsFile(fits)
         << ZarnSysFits::openFitsFile(fits, folder + "/x.fits", READONLY)
         << ZarnSysFits::closeFitsFile(fits);
    file.remove(false);
    return text.str();
}

std::string callAll(int thread) {
    return callFiles(thread) + callAstronomy(thread) + callMoon(thread) + callTexts(thread);
}

std::atomic<int> nextThread{0};
std::atomic<int> faults{0};
int rounds = 0;  // before threads are started

bool hasRolled() { return std::ifstream("log.1").good(); }

/// A thread's rounds, and more until the log has rolled: each must give what the first one gave.
void* callInThread(void* /*unused*/) {
    const int thread = nextThread++;
    while (nextThread < THREADS) std::this_thread::yield();  // the first calls are together, too
    const std::string first = callAll(thread);
    for (int round = 1; round < rounds || !hasRolled(); ++round)
        if (callAll(thread) != first) ++faults;
    return nullptr;
}

std::string runCalls() {
    WexoLogConfig config;
    config.setFileName("log");
    config.setMaxFileSize(1);
    config.setInterval(1);
    config.setMaxNumFiles(3);
    config.setCtrlFlags("OSTREAM");
    if (config.configure() != 0 || WexoLogConfig::runReactorEventLoop() != 0) return "no log";
    // Threads of ACE use the log of the thread that starts them.
    const int group = ACE_Thread_Manager::instance()->spawn_n(THREADS, callInThread);
    ACE_Thread_Manager::instance()->wait_grp(group);
    WexoLogConfig::endReactorEventLoop();
    ACE_Thread_Manager::instance()->wait();
    return std::to_string(THREADS) + " threads, " + std::to_string(rounds) +
           " rounds of all calls, the log rolled";
}

/// Creates the directories of all rounds, each when the other process is ready for it, too. The
/// slower one may be told that a directory exists, and nothing else; there it must be.
int createDirectories(std::atomic<int>& ready) {
    int failed = 0;
    for (int round = 0; round < rounds; ++round) {
        ++ready;
        while (ready < 2 * (round + 1)) std::this_thread::yield();
        const std::string name = "d" + std::to_string(round);
        try {
            FileIO("", true, true).checkCreateDir(name);
        } catch (ZarnSysEx& error) {
            const bool told = std::string(error.what()).find("File exists") != std::string::npos;
            if (!told) ++failed;
        }
        if (!std::filesystem::is_directory(name)) ++failed;
    }
    return failed;
}

std::string runDirectories() {
    void* const shared = ::mmap(nullptr, sizeof(std::atomic<int>) * 2, PROT_READ | PROT_WRITE,
                                MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) return "no memory";
    auto* const counts = new (shared) std::atomic<int>[2] {};
    const pid_t child = ::fork();
    counts[1] += createDirectories(counts[0]);
    if (child == 0) ::_exit(0);
    ::waitpid(child, nullptr, 0);
    faults += counts[1];
    return "2 processes, " + std::to_string(rounds) + " directories";
}

/// Ends the loop that calls it, every other time.
struct Ending : ACE_Event_Handler {
    explicit Ending(bool wanted) : ends(wanted) {}
    int handle_input(ACE_HANDLE /*unused*/) override {
        if (ends && WexoLogConfig::endReactorEventLoop() != 0) ++faults;
        called = true;
        return 0;
    }
    bool ends;
    std::atomic<bool> called{false};
};

std::string runReactor() {
    ACE_Reactor* const reactor = ACE_Reactor::instance();
    for (int cycle = 0; cycle < rounds; ++cycle) {
        Ending handler(cycle % 2 == 0);
        reactor->notify(&handler, ACE_Event_Handler::READ_MASK);
        if (WexoLogConfig::runReactorEventLoop() != 0) ++faults;
        if (cycle % 4 != 3)  // or the end comes while the thread may not have begun
            while (!handler.called) std::this_thread::yield();
        if (!handler.ends && WexoLogConfig::endReactorEventLoop() != 0) ++faults;
        if (ACE_Thread_Manager::instance()->wait() != 0 || !reactor->reactor_event_loop_done())
            ++faults;
        reactor->purge_pending_notifications(&handler);
        reactor->reset_reactor_event_loop();
    }
    return std::to_string(rounds) + " cycles of the reactor";
}

const std::map<std::string, std::function<std::string()>> TESTS = {
    {"calls", runCalls}, {"directories", runDirectories}, {"reactor", runReactor}};

}  // namespace

int main(int /*argc*/, char* argv[]) {
    const TempDir dir;
    std::filesystem::current_path(dir / "");
    rounds = std::stoi(argv[2]);
    const std::string tried = TESTS.at(argv[1])();
    std::cout << tried << ": " << faults << " faults\n";
    return faults == 0 ? 0 : 1;
}
