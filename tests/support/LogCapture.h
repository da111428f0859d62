/// Keeps this thread's log lines in memory while it lives; nothing reaches standard error.
#ifndef TESTS_SUPPORT_LOGCAPTURE_H
#define TESTS_SUPPORT_LOGCAPTURE_H

#include <ace/Log_Msg.h>
#include <ace/Log_Msg_Callback.h>
#include <ace/Log_Record.h>

#include <cstddef>
#include <string>
#include <utility>

class LogCapture : public ACE_Log_Msg_Callback {
public:
    LogCapture() : flags_(log().flags()), callback_(log().msg_callback(this)) {
        log().clr_flags(flags_);
        log().set_flags(ACE_Log_Msg::MSG_CALLBACK);
    }
    ~LogCapture() override {
        log().clr_flags(ACE_Log_Msg::MSG_CALLBACK);
        log().set_flags(flags_);
        log().msg_callback(callback_);
    }

    /// A line as ACE gets it: its priority, and the text with date and thread left out, for
    /// example "8 INFO  [ ] The program ...\n".
    void log(ACE_Log_Record& record) override {
        const std::string line = record.msg_data();
        const std::size_t thread = line.find("[ ") + 2;
        text_ += std::to_string(record.type()) + " " +
                 line.substr(DATE_LENGTH, thread - DATE_LENGTH) +
                 line.substr(line.find_first_not_of("0123456789", thread) + 1);
        error_ = log().errnum();
        file_ = log().file();
    }

    /// The lines since the last call.
    std::string take() { return std::exchange(text_, {}); }

    int error() const { return error_; }               ///< error number in the last context
    const std::string& file() const { return file_; }  ///< source file in the last context

private:
    static constexpr std::size_t DATE_LENGTH = 27;  // "2026-11-24 23:04:15.344444 "

    static ACE_Log_Msg& log() { return *ACE_Log_Msg::instance(); }

    u_long flags_;
    ACE_Log_Msg_Callback* callback_;
    std::string text_;
    int error_ = 0;
    std::string file_;
};

#endif  // TESTS_SUPPORT_LOGCAPTURE_H
