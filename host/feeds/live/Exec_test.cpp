#include <signal.h>
#include <sys/wait.h>

#include "host/feeds/live/testing/LiveBench.hpp"
#include "host/services/UniqueFd.hpp"

// Real programs.

namespace vigil {
namespace {

using std::chrono::milliseconds;

class Exec : public LiveBench {
  protected:
    std::string text(const std::string& name) const {
        std::ifstream file(path(name));
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool isThere(const std::string& name) const {
        for (int i = 0; i < 5000 && text(name).empty(); ++i)
            sleepFor(2);
        return !text(name).empty();
    }
    static bool isGone(int process) {
        for (int i = 0; i < 2500; ++i) {
            if (::kill(process, 0) != 0) return true;
            std::string stat;
            std::getline(std::ifstream("/proc/" + std::to_string(process) + "/stat"), stat);
            const auto state = stat.rfind(") ");
            if (state != std::string::npos && stat[state + 2] == 'Z') return true;
            sleepFor(2);
        }
        return false;
    }
};

TEST_F(Exec, BringsEachLineOfAProgramThatGoesOnForEver) {
    writeScript("tick.sh", "i=0\nwhile :; do i=$((i+1)); echo \"line $i\"; sleep 0.02; done\n");
    const auto sink = add("Home", "exec:./tick.sh");
    ASSERT_TRUE(sink->waitForMessages(5));
    EXPECT_EQ(sink->payloads()[0], "line 1");
    EXPECT_EQ(sink->payloads()[4], "line 5");
    EXPECT_EQ(sink->messages()[0].route, "");
    EXPECT_LT(std::abs(sink->messages()[0].arrived.secondsSince(now())), 60);
    EXPECT_EQ(sink->lastState().kind, FeedState::Live);
    EXPECT_LT(timeOf([&] { feeds().remove("Home"); }), kSoon);
    const auto calls = sink->calls();
    sleepFor(80);
    EXPECT_EQ(sink->calls(), calls) << "the sink hears nothing after it has been removed";
}

TEST_F(Exec, AProgramThatEndsIsStartedAgainLaterEachTime) {
    writeScript("short.sh", "date +%s%N >> starts\necho '{\"a\":1}'\necho 'no device' >&2\nexit 2\n");
    const auto sink = add("Home", "exec:./short.sh first 'second word'");
    ASSERT_TRUE(sink->waitForMessages(5));
    std::vector<std::string> retries;
    for (const FeedState& state : sink->states())
        if (state.kind == FeedState::Retrying) retries.push_back(state.words);
    ASSERT_GE(retries.size(), 4U);
    EXPECT_EQ(retries[0], "\"./short.sh\" ended with exit status 2 (no device); started again in 50 ms");
    EXPECT_NE(retries[1].find("in 100 ms"), std::string::npos) << retries[1];
    EXPECT_NE(retries[2].find("in 200 ms"), std::string::npos) << retries[2];
    EXPECT_NE(retries[3].find("in 400 ms"), std::string::npos) << retries[3];
    EXPECT_GE(feeds().counts("Home")->restarts, 4U);
    // the pauses are really kept
    std::ifstream starts(path("starts"));
    std::vector<double> times;
    for (double time = 0; starts >> time;)
        times.push_back(time / 1e9);
    ASSERT_GE(times.size(), 5U);
    EXPECT_GE(times[1] - times[0], 0.05);
    EXPECT_GE(times[4] - times[3], 0.4);
}

TEST_F(Exec, AProgramThatIsNotThereIsTriedAgainWithWords) {
    const auto sink = add("Home", "exec:no-such-receiver -F json");
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying));
    EXPECT_EQ(sink->states()[1].words,
              "\"no-such-receiver\" cannot be started: No such file or directory; started again in 50 ms");
    writeScript("late.sh", "echo here\nexec sleep 100\n");
    const auto late = add("Late", "exec:./late.sh");
    EXPECT_TRUE(late->waitForMessages(1));
}

TEST_F(Exec, AProgramIsAskedToEndBeforeItIsKilled) {
    writeScript("polite.sh",
                "trap 'echo done > tidied; exit 0' TERM\necho up\nwhile :; do sleep 0.05; done\n");
    const auto sink = add("Home", "exec:./polite.sh");
    ASSERT_TRUE(sink->waitForMessages(1));
    feeds().remove("Home");
    EXPECT_EQ(text("tidied"), "done\n");
}

TEST_F(Exec, AProgramThatDoesNotHeedTheRequestIsKilledWithWhatItStarted) {
    writeScript("stubborn.sh",
                "trap '' TERM INT HUP\nsh -c 'trap \"\" TERM; while :; do sleep 0.1; done' &\n"
                "echo $! > child\necho $$ > own\necho up\nwhile :; do sleep 0.1; done\n");
    const auto sink = add("Home", "exec:./stubborn.sh");
    ASSERT_TRUE(sink->waitForMessages(1));
    ASSERT_TRUE(isThere("own"));
    EXPECT_LT(timeOf([&] { feeds().remove("Home"); }), kSoon);
    EXPECT_TRUE(isGone(std::stoi(text("own"))));
    EXPECT_TRUE(isGone(std::stoi(text("child"))));
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "it has been waited for";
}

TEST_F(Exec, AProgramDoesNotOutliveAHostThatIsKilled) {
    writeScript("receiver.sh", "echo $$ > own\nwhile :; do sleep 0.05; done\n");
    const pid_t host = ::fork();
    if (host == 0) {
        add("Home", "exec:./receiver.sh");
        for (;;)
            ::pause();
    }
    ASSERT_TRUE(isThere("own"));
    ::kill(host, SIGKILL);
    ASSERT_EQ(::waitpid(host, nullptr, 0), host);
    EXPECT_TRUE(isGone(std::stoi(text("own"))));
}

TEST_F(Exec, RunsInTheFolderWithoutInputAndWithoutTheHostsOwnVariables) {
    ::setenv("VIGIL_TEST_PASSWORD", "hush", 1);
    const UniqueFd careless(::dup(0));  // as some library might leave it
    writeScript("show.sh",
                "pwd\ncat\necho \"${VIGIL_TEST_PASSWORD:-nothing}\"\nls /proc/self/fd | wc -l\n"
                "exec sleep 100\n");
    const auto sink = add("Home", "exec:./show.sh");
    ASSERT_TRUE(sink->waitForMessages(3));
    ::unsetenv("VIGIL_TEST_PASSWORD");
    const auto lines = sink->payloads();
    EXPECT_EQ(lines[0], std::filesystem::canonical(m_folder));
    EXPECT_EQ(lines[1], "nothing");
    EXPECT_EQ(lines[2], "4") << "input, output, errors, and the folder that is listed";
}

TEST_F(Exec, ALineWithoutAnEndIsLeftOutAndTheNextOnesCome) {
    writeScript("long.sh", "head -c 3000000 /dev/zero | tr '\\0' x\necho\necho after\nexec sleep 100\n");
    const auto sink = add("Home", "exec:./long.sh");
    ASSERT_TRUE(sink->waitForMessages(1));
    EXPECT_EQ(sink->payloads()[0], "after");
    EXPECT_EQ(sink->problems(),
              std::vector<std::string>{"\"./long.sh\" wrote a line of more than 1048576 bytes; left out"});
    EXPECT_EQ(feeds().counts("Home")->leftOut, 1U);
}

TEST_F(Exec, AFullStationHoldsTheProgramBackAtOnceAndNothingIsLost) {
    writeScript("flood.sh", "seq 1 200000\nexec sleep 100\n");
    auto sink = std::make_shared<RecordingSink>();
    sink->setFullAt(10);
    ASSERT_TRUE(tryAdd("Home", "exec:./flood.sh", sink));
    ASSERT_TRUE(sink->waitForMessages(10));
    const auto before = processorTime();
    sleepFor(200);
    EXPECT_EQ(sink->count(), 10U);
    EXPECT_LT(processorTime() - before, milliseconds(60)) << "waiting is no work";
    sink->setFullAt(1000000);
    ASSERT_TRUE(sink->waitForMessages(200000));
    const auto lines = sink->payloads();
    for (std::size_t i = 0; i < lines.size(); ++i)
        ASSERT_EQ(lines[i], std::to_string(i + 1));
}

TEST_F(Exec, AProgramThatHasEndedIsReadToItsEndHoweverLongAStationIsFull) {
    writeScript("short.sh", "seq 1 1000\n");
    auto sink = std::make_shared<RecordingSink>();
    sink->setFullAt(3);
    ASSERT_TRUE(tryAdd("Home", "exec:./short.sh", sink));
    ASSERT_TRUE(sink->waitForMessages(3));
    const auto before = processorTime();
    sleepFor(200);
    EXPECT_EQ(sink->count(), 3U);
    EXPECT_LT(processorTime() - before, milliseconds(60)) << "waiting is no work";
    sink->setFullAt(1000);
    ASSERT_TRUE(sink->waitForMessages(1000));
    EXPECT_EQ(sink->payloads()[999], "1000");
}

TEST_F(Exec, OneThreadServesManyPrograms) {
    writeScript("one.sh", "echo \"$1\"\nexec sleep 100\n");
    std::vector<std::shared_ptr<RecordingSink>> sinks;
    for (int i = 0; i < 20; ++i)
        sinks.push_back(add("S" + std::to_string(i), "exec:./one.sh " + std::to_string(i)));
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(sinks[static_cast<std::size_t>(i)]->waitForMessages(1));
        EXPECT_EQ(sinks[static_cast<std::size_t>(i)]->payloads()[0], std::to_string(i));
    }
    EXPECT_EQ(threadsNamed("feed-streams"), 1);
    EXPECT_LT(timeOf([&] { feeds().stop(); }), kSoon);
}

TEST_F(Exec, TheRealReceiverProgramBringsAWeatherLineAndIsStartedAgain) {
    const auto sink = add("Radio",
                          "exec:rtl_433 -c /dev/null -F json -y "
                          "'{208}aaaaaaaaaaa2dd4245067e287410000000100020000008c14201'");
    ASSERT_TRUE(sink->waitForMessages(1));
    const std::string line = sink->payloads()[0];
    EXPECT_NE(line.find("\"model\""), std::string::npos) << line;
    EXPECT_NE(line.find("\"temperature_C\""), std::string::npos) << line;
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying));
    ASSERT_TRUE(sink->waitForMessages(2)) << "it is started again";
    EXPECT_NE(sink->states()[2].words.find("\"rtl_433\" ended with exit status 0"), std::string::npos)
        << sink->states()[2].words;
}

}  // namespace
}  // namespace vigil
