// Who listens makes no difference: with the log off and nobody observing, a cycle looks at the readings alone
// that its condition asks about, and judges as one that looks at all of them.

#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host_contract/QRVKit.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

const char* const kConditions[] = {
    "a.unitValue < 2",
    "a.unitValue < 2 AND b.unitValue >= 1",
    "a.unitValue != 1 OR c.stringValue == \"2\"",
    "(b.value > CAST(0, \"NSDate\") AND a.stringValue != \"1\") OR d.unitValue == 0",
    "z.unitValue > 1 OR z.stringValue != \"1\"",
};

class Listener : public CycleObserver {
  public:
    void cycleEnded(const Object&, const CycleReport& report) override { outcomes.push_back(report.outcome); }
    std::vector<CycleOutcome> outcomes;
};

struct Station {
    explicit Station(bool logged) {
        world.log().setHighestLevel(logged ? 3 : 0);
        monitor->setTriggerOnlyOnChange(true);
        monitor->setRetriggerInterval(std::nullopt);
        monitor->setEvaluating(true);
        monitor->start();
    }
    // Whether it fired.
    bool announce(const std::shared_ptr<const Readings>& batch, const char* condition) {
        monitor->setPredicate(ConditionPredicate::predicateWithFormat(condition).value());
        world.advance(1);
        const auto before = monitor->retriggerDate();
        EXPECT_TRUE(world.notificationCenter()
                        .post({kAppRealTimeDataNotification, agent, {{kDataKey, batch}}})
                        .empty());
        return monitor->retriggerDate() != before;
    }

    FakeWorld world;
    std::shared_ptr<FakeAgent> agent = std::make_shared<FakeAgent>(world);
    std::shared_ptr<QRVVigilPlugIn> monitor = makePlugIn<QRVVigilPlugIn>(agent, nullptr);
};

TEST(SameVerdict, WhoeverListens) {
    std::mt19937 engine(7);
    const auto below = [&engine](unsigned limit) { return static_cast<unsigned>(engine()) % limit; };
    const std::vector<std::string> keys{"a", "b", "c", "d", "e"};
    std::vector<std::shared_ptr<const KeyTable>> tables{KeyTable::make({"a", "b", "c", "d", "e"}),
                                                        KeyTable::make({"e", "d", "c", "b", "a"}),
                                                        KeyTable::make({"x", "y", "a", "b", "c", "d", "e"})};
    Station quiet(false);
    Station logged(true);
    Station observed(false);
    const auto listener = std::make_shared<Listener>();
    observed.monitor->setCycleObserver(listener);
    const int rounds = 6000;
    int fires = 0;
    const char* condition = kConditions[0];
    for (int round = 0; round < rounds; ++round) {
        if (below(8) == 0) condition = kConditions[below(std::size(kConditions))];
        std::vector<AgentProperty> entries;
        for (unsigned i = below(7); i > 0; --i) {  // several of one key, in any order, also none
            const auto time = below(5) == 0 ? std::nullopt : std::optional(Date(round - int(below(3))));
            entries.push_back(AgentProperty::number(keys[below(5)], below(4), time));
        }
        const auto batch =
            below(10) == 0 ? Readings::make(std::move(entries))
                           : Readings::make(tables[below(12) == 0 ? 1 + below(2) : 0], std::move(entries));
        const bool fired = quiet.announce(batch, condition);
        ASSERT_EQ(logged.announce(batch, condition), fired) << round << ": " << condition;
        ASSERT_EQ(observed.announce(batch, condition), fired) << round << ": " << condition;
        ASSERT_EQ(listener->outcomes.back() == CycleOutcome::Fired, fired);
        fires += fired;
    }
    EXPECT_GT(fires, rounds / 10);
    EXPECT_LT(fires, rounds - rounds / 10);
    EXPECT_TRUE(quiet.world.log().lines().empty());
    EXPECT_EQ(logged.world.log().lines().size(), std::size_t{rounds});
}

// A condition replaced between cycles counts from the next one, also when nothing else changed.
TEST(SameVerdict, AReplacedOrAbsentConditionCountsAtOnce) {
    Station station(false);
    station.monitor->setTriggerOnlyOnChange(false);
    const auto batch = Readings::make({AgentProperty::number("a", 1, Date(1))});
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(station.announce(batch, "a.unitValue == 1"));
        EXPECT_FALSE(station.announce(batch, "a.unitValue == 2"));
    }
    for (const bool onlyOnChange : {false, true}) {
        station.monitor->setTriggerOnlyOnChange(onlyOnChange);
        station.monitor->setPredicate(nullptr);
        const auto before = station.monitor->retriggerDate();
        station.world.notificationCenter().post(
            {kAppRealTimeDataNotification, station.agent, {{kDataKey, batch}}});
        EXPECT_EQ(station.monitor->retriggerDate(), before);
    }
}

}  // namespace
}  // namespace vigil
