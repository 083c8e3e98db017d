#include <functional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

// What interface files and hosts reach by name.

namespace vigil {
namespace {

class MonitorInterface : public testing::Test {
  protected:
    bool set(const char* name, const Value& value) {
        return m_monitor->propertyNamed(name)->set(*m_monitor, value);
    }
    Value get(const char* name) { return m_monitor->propertyNamed(name)->get(*m_monitor); }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
};

TEST_F(MonitorInterface, AnIntervalIsAnIntegerARealOrAbsent) {
    EXPECT_TRUE(set("retriggerInterval", Value(5)));
    EXPECT_EQ(m_monitor->retriggerInterval(), Number(5));
    EXPECT_TRUE(set("retriggerInterval", Value(0.25)));
    EXPECT_EQ(m_monitor->retriggerInterval(), Number(0.25));
    EXPECT_TRUE(set("retriggerInterval", Value()));
    EXPECT_FALSE(m_monitor->retriggerInterval());
    EXPECT_TRUE(get("retriggerInterval").isNothing());
    m_monitor->setRetriggerInterval(Number(3));
    EXPECT_FALSE(set("retriggerInterval", Value("3")));
    EXPECT_FALSE(set("retriggerInterval", Value(true)));
    EXPECT_EQ(m_monitor->retriggerInterval(), Number(3)) << "a refusal changes nothing";
}

TEST_F(MonitorInterface, ADateIsADateOrAbsent) {
    EXPECT_TRUE(set("retriggerDate", Value(Date(7))));
    EXPECT_EQ(m_monitor->retriggerDate(), Date(7));
    EXPECT_FALSE(set("retriggerDate", Value(7)));
    EXPECT_EQ(m_monitor->retriggerDate(), Date(7));
    EXPECT_TRUE(set("retriggerDate", Value()));
    EXPECT_FALSE(m_monitor->retriggerDate());
}

TEST_F(MonitorInterface, AConditionIsAConditionOrAbsent) {
    const auto condition = ConditionPredicate::predicateWithFormat("a.unitValue > 1").value();
    EXPECT_TRUE(set("predicate", Value(std::static_pointer_cast<Object>(condition))));
    EXPECT_EQ(m_monitor->predicate(), condition);
    EXPECT_FALSE(set("predicate", Value("a.unitValue > 2"))) << "a text is no condition yet";
    EXPECT_FALSE(set("predicate", Value(std::static_pointer_cast<Object>(m_monitor))));
    EXPECT_EQ(m_monitor->predicate(), condition);
    EXPECT_TRUE(set("predicate", Value()));
    EXPECT_EQ(m_monitor->predicate(), nullptr);
    EXPECT_TRUE(get("predicate").isNothing());
}

TEST_F(MonitorInterface, WhoObservesAPropertyHearsOfItsOwnSetsAloneForAsLongAsTheTokenLives) {
    const std::vector<std::pair<const char*, std::function<void()>>> sets = {
        {"evaluating", [this] { m_monitor->setEvaluating(true); }},
        {"triggerOnlyOnChange", [this] { m_monitor->setTriggerOnlyOnChange(true); }},
        {"retriggerInterval", [this] { m_monitor->setRetriggerInterval(Number(2)); }},
        {"retriggerDate", [this] { m_monitor->setRetriggerDate(Date(2)); }},
        {"actionStatus", [this] { m_monitor->setActionStatus("two"); }},
        {"predicate", [this] { m_monitor->setPredicate(nullptr); }},
    };
    for (const auto& [observed, itsOwn] : sets) {
        int heard = 0;
        auto token = m_monitor->propertyNamed(observed)->observe(*m_monitor, [&heard] { ++heard; });
        for (const auto& [name, setIt] : sets) {
            heard = 0;
            setIt();
            EXPECT_EQ(heard, name == observed ? 1 : 0) << observed << " when " << name << " is set";
        }
        token.reset();
        heard = 0;
        itsOwn();
        EXPECT_EQ(heard, 0) << observed;
    }
}

TEST_F(MonitorInterface, TheMonitorIsTheOwnerOfItsNamesAndReportsItsOwnCycles) {
    EXPECT_EQ(m_monitor->interfaceOwner(), m_monitor.get());
    EXPECT_EQ(m_monitor->cycleReporting(), m_monitor.get());
}

}  // namespace
}  // namespace vigil
