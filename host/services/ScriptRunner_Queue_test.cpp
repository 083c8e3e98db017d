#include <algorithm>
#include <sstream>

#include "host/services/ScriptRunner.hpp"
#include "host/services/testing/ScriptBench.hpp"

namespace vigil {
namespace {

class ScriptQueue : public ScriptBench {
  protected:
    ScriptRequest of(const std::string& station, std::string source) {
        ScriptRequest made = request(std::move(source));
        made.station = station;
        return made;
    }
    /// Runs until the file "go" appears.
    std::string gate() const { return "while ! [ -e $D/go ]; do sleep 0.01; done"; }
    void go() { std::ofstream(path("go")) << "go"; }
    bool runs(const std::string& station) {
        return eventually([&] {
            const auto now = m_runner->running();
            return std::any_of(now.begin(), now.end(),
                               [&](const auto& one) { return one.station == station; });
        });
    }
};

TEST_F(ScriptQueue, AStationsScriptsRunOneAfterAnotherInTheOrderHandedOver) {
    runner();
    std::size_t last = 0;
    std::string expected;
    for (int i = 0; i < 6; ++i) {
        const std::string number = std::to_string(i);
        // the earlier ones take longer, so that side by side they would end in another order
        last = submit(of("Harbour", "echo begin " + number + " >> $D/log; sleep 0.0" + std::to_string(6 - i) +
                                        "; echo end " + number + " >> $D/log"));
        expected += "begin " + number + "\nend " + number + "\n";
    }
    EXPECT_EQ(result(last).outcome, ScriptResult::Succeeded);
    EXPECT_EQ(fileText(path("log")), expected);
    EXPECT_EQ(order(), (std::vector<std::size_t>{0, 1, 2, 3, 4, 5}));
}

TEST_F(ScriptQueue, ScriptsOfDifferentStationsRunSideBySide) {
    runner();
    const auto one = submit(of("Harbour", "echo > $D/a; while ! [ -e $D/b ]; do sleep 0.01; done"));
    const auto two = submit(of("Hill", "echo > $D/b; while ! [ -e $D/a ]; do sleep 0.01; done"));
    EXPECT_EQ(result(one).outcome, ScriptResult::Succeeded);
    EXPECT_EQ(result(two).outcome, ScriptResult::Succeeded);
}

TEST_F(ScriptQueue, NoMoreRunAtOnceThanTheBound) {
    ScriptRunner::Options given = options();
    given.atOnce = 2;
    runner(std::move(given));
    std::vector<std::size_t> numbers;
    for (const char* station : {"A", "B", "C", "D", "E"})
        numbers.push_back(submit(of(station, "echo + >> $D/log; sleep 0.1; echo - >> $D/log")));
    for (const auto number : numbers)
        EXPECT_EQ(result(number).outcome, ScriptResult::Succeeded);
    std::istringstream log(fileText(path("log")));
    int now = 0;
    int most = 0;
    for (std::string line; std::getline(log, line);)
        most = std::max(most, now += line == "+" ? 1 : -1);
    EXPECT_LE(most, 2);
    EXPECT_EQ(now, 0);
}

TEST_F(ScriptQueue, ABusyStationHoldsNoOtherUp) {
    ScriptRunner::Options given = options();
    given.atOnce = 2;
    runner(std::move(given));
    const auto first = submit(of("Harbour", gate()));
    const auto second = submit(of("Harbour", "true"));
    const auto other = submit(of("Hill", "true"));
    EXPECT_EQ(result(other).outcome, ScriptResult::Succeeded);
    EXPECT_EQ(answers(second), 0u);
    go();
    EXPECT_EQ(result(second).outcome, ScriptResult::Succeeded);
    EXPECT_EQ(result(first).outcome, ScriptResult::Succeeded);
}

TEST_F(ScriptQueue, AFullQueueRefusesTheNewestAndSaysSo) {
    ScriptRunner::Options given = options();
    given.queuedAStation = 2;
    runner(std::move(given));
    const auto running = submit(of("Harbour", gate()));
    ASSERT_TRUE(runs("Harbour"));
    EXPECT_EQ(m_runner->queued("Harbour"), 0u);
    const auto first = submit(of("Harbour", "true"));
    const auto second = submit(of("Harbour", "true"));
    EXPECT_EQ(m_runner->queued("Harbour"), 2u);
    const auto refused = submit(of("Harbour", "true"));
    EXPECT_EQ(result(refused).outcome, ScriptResult::Refused);
    EXPECT_EQ(result(refused).failure, "2 scripts of this station wait already");
    EXPECT_EQ(result(submit(of("Hill", "true"))).outcome, ScriptResult::Succeeded);
    go();
    for (const auto number : {running, first, second}) {
        EXPECT_EQ(result(number).outcome, ScriptResult::Succeeded);
        EXPECT_EQ(answers(number), 1u);
    }
    EXPECT_EQ(answers(refused), 1u);
    EXPECT_EQ(m_runner->queued("Harbour"), 0u);
}

TEST_F(ScriptQueue, ShowsWhatRunsAndForWhom) {
    runner();
    const auto number = submit(of("Harbour", gate()));
    ASSERT_TRUE(runs("Harbour"));
    const auto now = m_runner->running();
    ASSERT_EQ(now.size(), 1u);
    EXPECT_EQ(now[0].monitor, "Frost");
    EXPECT_GT(now[0].since.secondsSinceReference(), 0);
    go();
    result(number);
    EXPECT_TRUE(m_runner->running().empty());
}

TEST_F(ScriptQueue, HandingOverDoesNotWait) {
    runner();
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 20; ++i)
        submit(of("Harbour", "sleep 1000"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    m_runner->stop();
    for (std::size_t i = 0; i < 20; ++i)
        EXPECT_EQ(answers(i), 1u);
}

TEST_F(ScriptQueue, AnAnswerMayHandOverTheNext) {
    runner();
    std::atomic<int> left{3};
    std::function<void(const ScriptResult&)> again = [&](const ScriptResult& result) {
        EXPECT_EQ(result.outcome, ScriptResult::Succeeded);
        if (--left > 0) m_runner->submit(request("true"), again);
    };
    m_runner->submit(request("true"), again);
    EXPECT_TRUE(eventually([&] { return left == 0; }));
    m_runner->stop();
}

TEST_F(ScriptQueue, ManyThreadsMayHandOver) {
    runner();
    std::vector<std::thread> threads;
    for (const char* station : {"A", "B", "C", "D"})
        threads.emplace_back([this, station] {
            for (int i = 0; i < 5; ++i)
                submit(of(station, "true"));
        });
    for (std::thread& thread : threads)
        thread.join();
    for (std::size_t i = 0; i < 20; ++i)
        EXPECT_EQ(result(i).outcome, ScriptResult::Succeeded);
}

}  // namespace
}  // namespace vigil
