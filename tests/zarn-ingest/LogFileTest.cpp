#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

#include "tests/support/TempDir.h"
#include "zarn-ingest/report/LogFile.h"

namespace zarn::ingest {

TEST(LogFileTest, ATornLineIsEndedBeforeTheNextOne) {
    const TempDir dir;
    LogFile log(dir / "l.log", 1000);
    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlim_t all = limit.rlim_cur;
    std::signal(SIGXFSZ, SIG_IGN);
    const auto write = [&](const char* line, rlim_t room) {
        limit.rlim_cur = room;
        setrlimit(RLIMIT_FSIZE, &limit);
        log << line << std::flush;
    };
    write("one\n", 6);
    write("two\n", 6);
    write("three\n", 6);
    write("four\n", all);
    write("five\n", all);
    const std::string text = dir.get("l.log");
    EXPECT_EQ(text, "one\ntw\nfour\nfive\n");
    EXPECT_EQ(log.rdbuf()->pubseekoff(0, std::ios_base::cur),
              static_cast<std::streamoff>(text.size()));
}

}  // namespace zarn::ingest
