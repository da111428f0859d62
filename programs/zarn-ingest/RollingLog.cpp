#include "RollingLog.h"

#include <ace/Log_Msg.h>
#include <ace/OS_NS_sys_time.h>
#include <ace/Thread_Manager.h>
#include <unistd.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/WexoLogConfig.h>
#include <zarnsys/util/WexoTime.h>

#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "Reading.h"
#include "zarnsys/util/Log.h"

namespace {

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

}  // namespace

RollingLog::RollingLog(const Settings& settings) {
    FileIO(settings.logFile, true, true).checkCreateDir("");
    std::error_code ignored;  // the check below finds out
    const auto status = std::filesystem::status(settings.logFile, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw std::runtime_error("the log " + settings.logFile + " is not being written: no file");
    configure(settings);
    const std::string trial = writeTrial();
    if (contentOf(settings.logFile).find(trial) == std::string::npos)
        throw std::runtime_error("the log " + settings.logFile + " is not being written");
    if (WexoLogConfig::runReactorEventLoop() != 0)
        throw std::runtime_error("the log's thread cannot be started");
}

RollingLog::~RollingLog() {
    WexoLogConfig::endReactorEventLoop();
    ACE_Thread_Manager::instance()->wait();
}
