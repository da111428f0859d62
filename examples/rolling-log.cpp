/// Writes a line into a log file that rolls over, and shows what arrived there.

#include <ace/Log_Msg.h>
#include <ace/Thread_Manager.h>
#include <zarnsys/util/FileIO.h>
#include <zarnsys/util/WexoLogConfig.h>
#include <zarnsys/util/WexoTime.h>
#include <zarnsys/util/ZarnSysEx.h>

#include <iostream>
#include <sstream>

int main() {
    const std::string fileName = "example-rolling.log";
    WexoLogConfig config;
    config.setFileName(fileName);
    config.setMaxFileSize(1024);  // [kB]
    config.setMaxNumFiles(3);
    config.setInterval(10);  // [s]
    config.setPriority("~DEBUG|INFO");
    if (config.configure() != 0 || WexoLogConfig::runReactorEventLoop() != 0) return 1;

    const ACE_Time_Value sunset(1795192800, 500000);
    ACE_Log_Msg::instance()->log(LM_INFO, "%D INFO  [ %t ] sunset at %s\n",
                                 WexoTime::asISOTimeString(sunset).c_str());

    WexoLogConfig::endReactorEventLoop();
    ACE_Thread_Manager::instance()->wait();  // a process must not end while its reactor runs
    try {
        FileIO file(fileName, true, true);
        std::stringstream text;
        file.load(text).remove(true);
        std::cout << text.str();
        return 0;
    } catch (ZarnSysEx& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
