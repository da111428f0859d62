#include "zarnsys/util/Log.h"

#include <ace/Log_Msg.h>

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string>

namespace {

// Of the characters that ACE gives a line, what the longest date, level and thread, and the newline
// leave. ACE itself would cut the newline off, and the next line would be glued to this one.
constexpr std::size_t LONGEST_MESSAGE = ACE_MAXLOGMSGLEN - 64;

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

/// How long a message may be that begins with these characters: never up to the middle of a UTF-8
/// sequence, which is of four bytes at most.
std::size_t lengthThatFits(const char* message) {
    const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
    std::size_t length = LONGEST_MESSAGE;
    while (length > LONGEST_MESSAGE - 3 && continues(message[length])) --length;
    return length;
}

}  // namespace

LogLine::LogLine(ACE_Log_Priority priority, const char* file, int line)
    : priority_(priority), file_(file), line_(line), error_(ACE_Log_Msg::last_error_adapter()) {}

void LogLine::operator()(const char* format, ...) const {
    ACE_Log_Msg* log = ACE_Log_Msg::instance();
    log->conditional_set(file_, line_, 0, error_);
    if (log->log_priority_enabled(priority_) == 0) return;  // nobody is going to read the message
    std::array<char, LONGEST_MESSAGE + 2> message = {};     // one more shows where a character ends
    va_list arguments;
    va_start(arguments, format);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): clang 14 does not see va_start
    const int length = std::vsnprintf(message.data(), message.size(), format, arguments);
    va_end(arguments);
    if (length > 0 && static_cast<std::size_t>(length) > LONGEST_MESSAGE)
        message[lengthThatFits(message.data())] = '\0';
    const std::string lineFormat = std::string("%D ") + levelWord(priority_) + " [ %t ] %s\n";
    log->log(priority_, lineFormat.c_str(), message.data());
}
