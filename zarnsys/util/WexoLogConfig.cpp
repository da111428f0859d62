#include "zarnsys/util/WexoLogConfig.h"

#include <ace/Reactor.h>
#include <ace/Service_Config.h>
#include <ace/Thread_Manager.h>

#include <string>

#include "zarnsys/util/Log.h"

namespace {

// ACE's service-configurator words: load its logging strategy as the service Logger.
const char LOAD_STRATEGY[] = "dynamic Logger Service_Object *ACE:_make_ACE_Logging_Strategy() ";

void addOption(std::string& args, const char* option, const std::string& value) {
    if (!value.empty()) args.append(option).append(value);
}

void addOption(std::string& args, const char* option, int value) {
    if (value > 0)
        args.append(option).append(std::to_string(value));  // never grouped, whatever the locale
}

}  // namespace

WexoLogConfig::WexoLogConfig() : interval_(0), maxFileSize_(0), maxNumFiles_(0) {}

int WexoLogConfig::configure() {
    std::string args;
    addOption(args, " -f ", ctrlFlags_);
    addOption(args, " -i ", interval_);
    addOption(args, " -m ", maxFileSize_);
    addOption(args, " -n ", programName_);
    addOption(args, " -N ", maxNumFiles_);
    addOption(args, " -p ", priority_);
    addOption(args, " -s ", fileName_);
    if (args.empty()) {
        logError()("WexoLogConfig::configure(). No configuration options were specified.");
        return -1;
    }
    const std::string directive = LOAD_STRATEGY + ('"' + args + '"');
    if (ACE_Service_Config::process_directive(directive.c_str()) == -1) {
        logError()("WexoLogConfig::configure(). Error configuring logging strategy : %s",
                   directive.c_str());
        return -1;
    }
    logDebug()("WexoLogConfig::configure(). \"%s\"", args.c_str());
    return 0;
}

int WexoLogConfig::runReactorEventLoop() {
    if (ACE_Thread_Manager::instance()->spawn(runReactor, nullptr) == -1) {
        logError()("Error spawning reactor.");
        return -1;
    }
    return 0;
}

int WexoLogConfig::endReactorEventLoop() {
    if (ACE_Reactor::instance()->end_reactor_event_loop() == -1) {
        logError()("Error ending reactor");
        return -1;
    }
    return 0;
}

void* WexoLogConfig::runReactor(void* /*unused*/) {
    ACE_Reactor* reactor = ACE_Reactor::instance();
    reactor->owner(ACE_Thread_Manager::instance()->thr_self());
    reactor->run_reactor_event_loop();
    return nullptr;
}
