#include "zarn-ingest/report/RollingLog.h"

#include <ace/Event_Handler.h>
#include <ace/Log_Msg.h>
#include <ace/OS_NS_sys_time.h>
#include <ace/Reactor.h>
#include <ace/Thread_Manager.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/WexoLogConfig.h>
#include <zarnsys/util/WexoTime.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "shared/files/Reading.h"
#include "zarn-ingest/report/LogFile.h"
#include "zarnsys/util/Log.h"

namespace zarn::ingest {

namespace {

constexpr std::streamoff KILOBYTE = 1024;  // as ACE counts
constexpr bool DELETE_STREAM = true;
constexpr const char* LEVELS[] = {" DEBUG [ ", " INFO  [ ", " ERROR [ "};  // one is in every line
constexpr int RESTART = 1;                 // the reactor goes on after a signal
const ACE_Time_Value PATIENCE(0, 200000);  // for the reactor to end, before it is told again

/// Ends the reactor's loop from within. Another thread that ends it waits for the reactor to wake,
/// for ever when a signal comes at the wrong moment.
class Ending : public ACE_Event_Handler {
public:
    int handle_exception(ACE_HANDLE /*unused*/) override {
        return WexoLogConfig::endReactorEventLoop();
    }
};

void configure(const Settings& settings) {
    WexoLogConfig config;
    config.setFileName(settings.logFile);
    config.setMaxFileSize(static_cast<int>(settings.logSize));
    config.setMaxNumFiles(static_cast<int>(settings.logFiles));
    config.setInterval(static_cast<int>(settings.logInterval));
    config.setPriority(settings.logPriorities);
    config.setCtrlFlags(settings.logFlags);
    config.setProgramName(settings.logProgram);
    config.configure();  // its status tells little; the check below tells all
}

/// Writes a line at a level that is not masked; empty: all are.
std::string writeTrial() {
    std::string line = "log of zarn-ingest " ZARNSYS_VERSION " begins, process " +
                       std::to_string(::getpid()) + ", " +
                       WexoTime::asUnixTimeString(ACE_OS::gettimeofday());
    ACE_Log_Msg* log = ACE_Log_Msg::instance();
    if (log->log_priority_enabled(LM_INFO) != 0) {
        logInfo()("%s", line.c_str());
    } else if (log->log_priority_enabled(LM_ERROR) != 0) {
        logError()("%s", line.c_str());
    } else {
        return "";
    }
    return line;
}

std::string contentOf(const std::string& fileName) {
    try {
        return readFile(fileName);
    } catch (const std::system_error& error) {
        throw std::runtime_error("the log " + fileName +
                                 " is not being written: " + error.code().message());
    }
}

/// Makes sure that what has the log's name already is a log: lines would be added to anything else,
/// to a header text or the properties file itself.
void checkIsLog(const std::string& fileName) {
    std::error_code ignored;  // what cannot be read now shows when it is written
    const auto status = std::filesystem::status(fileName, ignored);
    if (!std::filesystem::exists(status)) return;
    if (!std::filesystem::is_regular_file(status))
        throw std::runtime_error("the log " + fileName + " is not being written: no file");
    std::ifstream file(fileName);
    std::string line;
    if (!std::getline(file, line)) return;
    const auto holds = [&line](const char* level) { return line.find(level) != std::string::npos; };
    if (std::none_of(std::begin(LEVELS), std::end(LEVELS), holds))
        throw std::runtime_error("the log " + fileName + " holds something else than a log");
}

}  // namespace

RollingLog::RollingLog(const Settings& settings) {
    FileIO(settings.logFile, true, true).checkCreateDir("");
    checkIsLog(settings.logFile);
    configure(settings);
    // In place of ACE's own, which it then deletes.
    ACE_Log_Msg::instance()->msg_ostream(
        new LogFile(settings.logFile, static_cast<std::streamoff>(settings.logSize) * KILOBYTE),
        DELETE_STREAM);
    const std::string trial = writeTrial();
    if (contentOf(settings.logFile).find(trial) == std::string::npos)
        throw std::runtime_error("the log " + settings.logFile + " is not being written");
    ACE_Reactor::instance()->restart(RESTART);
    if (WexoLogConfig::runReactorEventLoop() != 0)
        throw std::runtime_error("the log's thread cannot be started");
}

void RollingLog::keepOpen() {
    ACE_Log_Msg* log = ACE_Log_Msg::instance();
    log->acquire();
    std::ostream* stream = log->msg_ostream();
    if (stream != nullptr && stream->fail()) stream->clear();
    log->release();
}

RollingLog::~RollingLog() {
    static Ending ending;  // a notification that comes too late must still find it
    ACE_Time_Value deadline;
    do {
        // A signal can undo it: hence again and again. One that stayed in the queue without having
        // woken the reactor would keep all later ones from doing so.
        ACE_Reactor::instance()->purge_pending_notifications(&ending);
        ACE_Reactor::instance()->notify(&ending);
        deadline = ACE_OS::gettimeofday() + PATIENCE;
    } while (ACE_Thread_Manager::instance()->wait(&deadline) == -1);
}

}  // namespace zarn::ingest
