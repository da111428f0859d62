#include <ace/Reactor.h>
#include <ace/Service_Gestalt.h>
#include <ace/Thread_Manager.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <vector>

#include "tests/support/Child.h"
#include "tests/support/Grouping.h"
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

    static void SetUpTestSuite() { ACE_Reactor::instance(); }  // whose files stay open
    void SetUp() override { directives.clear(); }
};

TEST_F(WexoLogConfigTest, OptionsComeInAFixedOrderAndARefusalShowsTheDirective) {
    const Grouping grouping;
    config_.setFileName("/tmp/a \"b.log");
    config_.setPriority("~DEBUG|INFO");
    config_.setMaxNumFiles(1);
    config_.setProgramName("prog");
    config_.setMaxFileSize(1024000);
    config_.setInterval(60);
    config_.setCtrlFlags("STDERR|OSTREAM");
    const std::string args =
        "\" -f STDERR|OSTREAM -i 60 -m 1024000 -n prog -N 1 -p ~DEBUG|INFO -s /tmp/a \"b.log\"";
    const std::string directive =
        "dynamic Logger Service_Object *ACE:_make_ACE_Logging_Strategy() " + args;
    const std::string name = "WexoLogConfig::configure(). ";
    for (directiveResult = -1; directiveResult <= 1; ++directiveResult)
        EXPECT_EQ(config_.configure(), directiveResult == -1 ? -1 : 0);
    EXPECT_EQ(directives, Lines(3, directive));
    const std::string done = "4 DEBUG [ ] " + name + args + "\n";
    EXPECT_EQ(log_.take(), "128 ERROR [ ] " + name + "Error configuring logging strategy : " +
                               directive + "\n" + done + done);
}

TEST_F(WexoLogConfigTest, NothingSetAsksAceForNothing) {
    config_.setInterval(0);
    config_.setMaxFileSize(-1);
    config_.setPriority("");
    EXPECT_EQ(config_.configure(), -1);
    EXPECT_EQ(log_.take(),
              "128 ERROR [ ] WexoLogConfig::configure(). "
              "No configuration options were specified.\n");
    EXPECT_EQ(directives, Lines{});
}

// What else the reactor's thread does, torture/threads.cpp has.
TEST_F(WexoLogConfigTest, TheReactorStartsAndEndsWithoutALine) {
    EXPECT_EQ(WexoLogConfig::runReactorEventLoop(), 0);
    EXPECT_EQ(WexoLogConfig::endReactorEventLoop(), 0);
    EXPECT_EQ(ACE_Thread_Manager::instance()->wait(), 0);
    EXPECT_EQ(log_.take(), "");
}

TEST_F(WexoLogConfigTest, AThreadThatCannotBeStartedIsAFailure) {
    EXPECT_EQ(inChild([&] {
                  becomeOrdinaryUser();
                  const rlimit none = {0, 0};
                  ::setrlimit(RLIMIT_NPROC, &none);
                  if (WexoLogConfig::runReactorEventLoop() != -1) return 1;
                  return log_.take() == "128 ERROR [ ] Error spawning reactor.\n" ? 0 : 2;
              }),
              0);
}

}  // namespace
