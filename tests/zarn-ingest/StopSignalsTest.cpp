#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>

#include "tests/support/Child.h"
#include "zarn-ingest/run/StopSignals.h"

namespace zarn::ingest {

namespace {

constexpr int DIED = -1;  // of a signal, as `inChild` says
constexpr std::chrono::seconds LONG{60};

TEST(StopSignalsTest, TheFirstIsNotedAndTheSameAgainEndsTheProcess) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const auto noted = [signal](int times) {
            return inChild([signal, times] {
                std::signal(signal, SIG_DFL);
                const StopSignals signals;
                if (signals.received() != 0 || !signals.sleep(std::chrono::milliseconds(1)))
                    return 1;
                for (int i = 0; i < times; ++i) ::raise(signal);
                // Neither of these waits any more.
                std::array<int, 2> silent = {};
                const bool waited = ::pipe(silent.data()) != 0 || signals.sleep(LONG) ||
                                    signals.waitFor(silent.front());
                return waited ? 2 : signals.received();
            });
        };
        EXPECT_EQ(noted(1), signal);
        EXPECT_EQ(noted(2), DIED);
    }
}

}  // namespace

}  // namespace zarn::ingest
