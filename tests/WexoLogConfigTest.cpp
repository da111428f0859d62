#include <ace/Reactor.h>
#include <ace/Service_Gestalt.h>
#include <ace/Thread_Manager.h>
#include <gtest/gtest.h>

#include <vector>

#include "tests/support/LogCapture.h"
#include "zarnsys/util/WexoLogConfig.h"

namespace {
std::vector<std::string> directives;  // what the stand-in below was given
int directiveResult = 0;              // and what it returns
}  // namespace

/// Takes the place of ACE's for the library, too.
int ACE_Service_Gestalt::process_directive(const ACE_TCHAR directive[]) {
    directives.emplace_back(directive);
    return directiveResult;
}

namespace {

using Lines = std::vector<std::string>;

class WexoLogConfigTest : public ::testing::Test {
protected:
    LogCapture log_;
    WexoLogConfig config_;

    void SetUp() override { directives.clear(); }
};

const std::string DIRECTIVE = "dynamic Logger Service_Object *ACE:_make_ACE_Logging_Strategy() ";

TEST_F(WexoLogConfigTest, OptionsComeInAFixedOrder) {
    config_.setFileName("/tmp/a \"b.log");
    config_.setPriority("~DEBUG|INFO");
    config_.setMaxNumFiles(5);
    config_.setProgramName("prog");
    config_.setMaxFileSize(1024000);
    config_.setInterval(60);
    config_.setCtrlFlags("STDERR|OSTREAM");
    const std::string args =
        " -f STDERR|OSTREAM -i 60 -m 1024000 -n prog -N 5 -p ~DEBUG|INFO -s /tmp/a \"b.log";
    for (const int result : {0, 1}) {
        directiveResult = result;
        EXPECT_EQ(config_.configure(), 0);
        EXPECT_EQ(log_.take(), Lines{"4 DEBUG [ ] WexoLogConfig::configure(). \"" + args + "\"\n"});
    }
    EXPECT_EQ(directives, Lines(2, DIRECTIVE + "\"" + args + "\""));
}

TEST_F(WexoLogConfigTest, NothingSetAsksAceForNothing) {
    config_.setInterval(0);
    config_.setMaxFileSize(-1);
    config_.setPriority("");
    EXPECT_EQ(config_.configure(), -1);
    EXPECT_EQ(log_.take(), Lines{"128 ERROR [ ] WexoLogConfig::configure(). "
                                 "No configuration options were specified.\n"});
    EXPECT_EQ(directives, Lines{});
}

TEST_F(WexoLogConfigTest, ARefusalShowsTheDirective) {
    config_.setFileName("a.log");
    directiveResult = -1;
    EXPECT_EQ(config_.configure(), -1);
    EXPECT_EQ(log_.take(),
              Lines{"128 ERROR [ ] WexoLogConfig::configure(). Error configuring logging "
                    "strategy : " +
                    DIRECTIVE + "\" -s a.log\"\n"});
}

TEST_F(WexoLogConfigTest, TheReactorThreadOwnsTheReactorUntilItIsEnded) {
    EXPECT_EQ(WexoLogConfig::runReactorEventLoop(), 0);
    ACE_thread_t owner = 0;
    do {
        ACE_Reactor::instance()->owner(&owner);
    } while (owner == ACE_Thread_Manager::instance()->thr_self());
    EXPECT_EQ(ACE_Reactor::instance()->reactor_event_loop_done(), 0);
    EXPECT_EQ(WexoLogConfig::endReactorEventLoop(), 0);
    EXPECT_EQ(ACE_Thread_Manager::instance()->wait(), 0);
    EXPECT_NE(ACE_Reactor::instance()->reactor_event_loop_done(), 0);
    EXPECT_EQ(log_.take(), Lines{});
}

}  // namespace
