#include "host/kit/LiveWorld.hpp"

#include <cstdlib>
#include <future>

#include <gtest/gtest.h>

#include "host/kit/StandardLog.hpp"
#include "host/services/SystemClock.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

class LiveWorldTest : public testing::Test {
  protected:
    RecordingLog log;
    FakeInterfaceFiles interfaceFiles;
    LiveWorld world{log, interfaceFiles, "/scripts"};
};

TEST_F(LiveWorldTest, GivesTheServicesOfTheMachineAndWhatItWasGiven) {
    EXPECT_NEAR(world.now().secondsSince(systemNow()), 0, 5);
    EXPECT_TRUE(world.mainQueue().isMainThread());
    EXPECT_EQ(&world.log(), &log);
    EXPECT_EQ(&world.interfaceFiles(), &interfaceFiles);
    EXPECT_EQ(world.scriptsFolder(), "/scripts");
    EXPECT_TRUE(world.plugInHost().admits("QRVVigilPlugIn"));
    EXPECT_FALSE(world.files().readUtf8("/"));
}

TEST_F(LiveWorldTest, TheMainThreadHasTheLoopThatServesAndOthersOneThatOnlyWaits) {
    int ran = 0;
    world.mainQueue().dispatchAsync([&] { ++ran; });
    std::async(std::launch::async, [&] { world.currentRunLoop().runUntil(world.now()); }).get();
    EXPECT_EQ(ran, 0);
    world.currentRunLoop().runUntil(world.now());
    EXPECT_EQ(ran, 1);
}

TEST_F(LiveWorldTest, APostedTaskThatThrowsIsALineInTheLog) {
    world.mainQueue().dispatchAsync([] { throw std::runtime_error("no paper"); });
    EXPECT_TRUE(world.mailbox().serveOne({}));
    EXPECT_EQ(log.lines(),
              (std::vector<RecordingLog::Line>{{kLogProblem, "a task of the main queue failed: no paper"}}));
}

/// Sets an environment variable for one test.
class Variable {
  public:
    Variable(const char* name, const char* value) : m_name(name) {
        if (const char* before = std::getenv(name)) m_before = before;
        setenv(name, value, 1);
    }
    ~Variable() {
        if (m_before)
            setenv(m_name, m_before->c_str(), 1);
        else
            unsetenv(m_name);
    }

  private:
    const char* m_name;
    std::optional<std::string> m_before;
};

TEST(DefaultScriptsFolder, IsInTheFolderForSettings) {
    const Variable home("HOME", "/ann");
    const Variable settings("XDG_CONFIG_HOME", "/etc/ann");
    EXPECT_EQ(defaultScriptsFolder(), "/etc/ann/vigil/scripts");
    const Variable relative("XDG_CONFIG_HOME", "ann");
    EXPECT_EQ(defaultScriptsFolder(), "/ann/.config/vigil/scripts");
    const Variable empty("XDG_CONFIG_HOME", "");
    EXPECT_EQ(defaultScriptsFolder(), "/ann/.config/vigil/scripts");
}

}  // namespace
}  // namespace vigil
