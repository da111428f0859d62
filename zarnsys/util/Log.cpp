#include "zarnsys/util/Log.h"

#include <ace/Log_Msg.h>

#include <cstdarg>
#include <string>

namespace {

/// The level word of a priority, five characters wide so that messages stand in one column.
const char* levelWord(ACE_Log_Priority priority) {
    switch (priority) {
        case LM_DEBUG:
            return "DEBUG";
        case LM_INFO:
            return "INFO ";
        default:
            return "ERROR";
    }
}

}  // namespace

LogLine::LogLine(ACE_Log_Priority priority, const char* file, int line)
    : priority_(priority), file_(file), line_(line), error_(ACE_Log_Msg::last_error_adapter()) {}

void LogLine::operator()(const char* format, ...) const {
    const std::string lineFormat =
        std::string("%D ") + levelWord(priority_) + " [ %t ] " + format + "\n";
    ACE_Log_Msg* log = ACE_Log_Msg::instance();
    log->conditional_set(file_, line_, 0, error_);
    va_list arguments;
    va_start(arguments, format);
    log->log(lineFormat.c_str(), priority_, arguments);
    va_end(arguments);
}
