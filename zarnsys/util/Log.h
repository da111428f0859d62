/// The one way in which the library writes a log line. Private: not installed.
///
/// A call names the level and the message, `logDebug()("Loading file: %s", name)`; the line's form
/// ("%D", level word, "[ %t ]", newline), the level's ACE priority and the log context (caller's
/// file and line, last error number) are settled here and nowhere else.
#ifndef ZARNSYS_UTIL_LOG_H
#define ZARNSYS_UTIL_LOG_H

#include <ace/Log_Priority.h>

/// One log line about to be written, by the thread that makes it.
class LogLine {
public:
    /// Takes the last error number before the message's arguments can change it.
    LogLine(ACE_Log_Priority priority, const char* file, int line);

    /// Writes the line through ACE; `errno` is afterwards what it was.
    ///
    /// A message too long for ACE's line is cut, so that the line still ends.
    ///
    /// @param format  as `printf` takes it: message without date, level, thread and newline
    void operator()(const char* format, ...) const __attribute__((format(printf, 2, 3)));

private:
    ACE_Log_Priority priority_;
    const char* file_;
    int line_;
    int error_;
};

inline LogLine logDebug(const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    return {LM_DEBUG, file, line};
}

inline LogLine logInfo(const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    return {LM_INFO, file, line};
}

inline LogLine logError(const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    return {LM_ERROR, file, line};
}

#endif  // ZARNSYS_UTIL_LOG_H
