#include "tests/scenarios/Scenario.hpp"

#include <algorithm>

#include <gtest/gtest.h>

#include "host/kit/KeyedArchive.hpp"
#include "host/kit/KitClasses.hpp"
#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {

static void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

namespace {

/// Keeps what the last cycle reported.
class LastCycle : public CycleObserver {
  public:
    void cycleEnded(const Object&, const CycleReport& report) override {
        outcome = outcomeName(report.outcome);
        next = report.next;
        std::vector<std::string> keys;
        for (std::size_t slot = 0; report.judged.table && slot < report.judged.table->size(); ++slot)
            if (report.judged.bySlot[slot]) keys.push_back(report.judged.bySlot[slot]->propertyName());
        std::sort(keys.begin(), keys.end());
        inputs.clear();
        for (const std::string& key : keys)
            inputs += (inputs.empty() ? "" : " ") + key;
    }
    std::string outcome;
    std::string inputs;
    std::optional<Date> next;
};

class Scenarios : public testing::TestWithParam<Scenario> {
  protected:
    void follow(std::shared_ptr<QRVVigilPlugIn> monitor) {
        m_monitor = std::move(monitor);
        m_monitor->setCycleObserver(m_cycle);
        m_monitor->start();
    }

    void create(const Scenario& scenario) {
        auto monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
        if (scenario.condition)
            monitor->setPredicate(ConditionPredicate::predicateWithFormat(*scenario.condition).value());
        if (scenario.retrigger == "none")
            monitor->setRetriggerInterval(std::nullopt);
        else if (scenario.retrigger)
            monitor->setRetriggerInterval(Number(std::stod(*scenario.retrigger)));
        monitor->setTriggerOnlyOnChange(scenario.onlyOnChange);
        monitor->setEvaluating(true);
        follow(monitor);
    }

    void restore() {
        registerKitClasses();
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make);
        const auto text = writeArchive(m_monitor, m_agent.get());
        ASSERT_TRUE(text) << text.error().message;
        m_monitor->stop();
        const World::Scope scope(m_world);
        const auto read = readArchive(text.value(), m_agent);
        ASSERT_TRUE(read) << read.error().message;
        follow(std::dynamic_pointer_cast<QRVVigilPlugIn>(read.value()));
    }

    void announce(const ScenarioStep& step) {
        m_world.setNow(parseDate(step.time).value());
        std::vector<AgentProperty> readings;
        for (const auto& [key, text] : step.readings) {
            Date taken = m_world.now();
            for (const auto& [old, seconds] : step.ages)
                if (old == key) taken = taken.plus(-seconds);
            readings.push_back(text.starts_with('"')
                                   ? AgentProperty::text(key, text.substr(1, text.size() - 2), taken)
                                   : AgentProperty::number(key, std::stod(text), taken));
        }
        EXPECT_TRUE(FakeAgent::announce(m_agent, std::move(readings)).empty());
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<LastCycle> m_cycle = std::make_shared<LastCycle>();
    std::shared_ptr<QRVVigilPlugIn> m_monitor;
};

TEST_P(Scenarios, GoAsWritten) {
    const Scenario& scenario = GetParam();
    ASSERT_EQ(scenario.problem, "") << scenario.name;
    create(scenario);
    for (const ScenarioStep& step : scenario.steps) {
        const std::string place = scenario.name + ":" + std::to_string(step.line);
        if (step.archivedBefore) restore();
        announce(step);
        EXPECT_EQ(m_cycle->outcome, step.outcome) << place;
        if (step.inputs) {
            EXPECT_EQ(m_cycle->inputs, *step.inputs) << place;
        }
        if (step.next) {
            EXPECT_EQ(m_cycle->next ? m_cycle->next->isoText(6) : "none", *step.next) << place;
        }
        if (step.status) {
            EXPECT_EQ(m_monitor->actionStatus(), *step.status) << place;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, Scenarios, testing::ValuesIn(allScenarios(VIGIL_SOURCE_DIR "/tests/scenarios")),
                         [](const testing::TestParamInfo<Scenario>& each) {
                             std::string name = each.param.name;
                             std::erase_if(
                                 name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
                             return name;
                         });

}  // namespace
}  // namespace vigil
