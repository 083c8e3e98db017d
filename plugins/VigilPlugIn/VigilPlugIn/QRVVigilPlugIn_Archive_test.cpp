#include <utility>

#include <gmock/gmock.h>

#include "host_contract/ContractClasses.hpp"
#include "host_contract/QRVKit.hpp"
#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"
#include "tests/support/MemoryArchive.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MonitorArchive : public testing::Test {
  protected:
    MonitorArchive() {
        registerContractClasses();
        ClassRegistry::shared().add("ConditionPredicate", &makeObject<ConditionPredicate>);
        auto bundle = std::make_shared<Bundle>();
        bundle->resourcePath = "/resources";
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make, bundle);
    }

    /// Gives each of the eight archived properties a value that is not its default.
    void fill() {
        const auto root = m_monitor->criteria()->front();
        m_monitor->setRuleEditorStoredCriteria(std::make_shared<QRVVigilPlugIn::CriteriaRows>(
            QRVVigilPlugIn::CriteriaRows{{root, root->childAtIndex(0)}, {m_monitor->criteria()->at(1)}}));
        m_monitor->setRuleEditorStoredDisplayValues(
            std::make_shared<QRVVigilPlugIn::DisplayValueRows>(QRVVigilPlugIn::DisplayValueRows{
                {"Run script", std::make_shared<TextField>("notify.sh roof")}, {"Play Sound"}}));
        m_monitor->setEvaluating(true);
        m_monitor->setRetriggerInterval(Number(2.5));
        m_monitor->setRetriggerDate(m_world.now().plus(90.25));
        m_monitor->setLastEvaluationDictionary(
            EvaluationDictionary(Readings::make({AgentProperty::number("windChill", 5, m_world.now()),
                                                 AgentProperty::text("sky", "Rain", std::nullopt)})));
        m_monitor->setTriggerOnlyOnChange(true);
        m_monitor->setPredicate(
            ConditionPredicate::predicateWithFormat("sky.stringValue == \"Rain\"").value());
    }

    static std::shared_ptr<QRVVigilPlugIn> read(MemoryArchive& archive,
                                                const std::shared_ptr<FakeAgent>& agent) {
        auto monitor = archive.readAs<QRVVigilPlugIn>(agent);
        EXPECT_THAT(archive.refusals(), IsEmpty());
        return monitor;
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
};

TEST_F(MonitorArchive, EightKeysAreWrittenInTheirOrderBehindTheBasesOwn) {
    fill();
    EXPECT_THAT(MemoryArchive(m_monitor).rootKeys(),
                ElementsAre("agent", "title", "ruleEdStoredCriteria", "ruleEdStoredDisplayValues",
                            "evaluating", "retriggerInterval", "retriggerDate", "lastEvaluationDictionary",
                            "triggerOnlyOnChange", "predicate"));
}

TEST_F(MonitorArchive, TheBasesEntriesAreReadFirstAndThenTheEightInTheOrderOfWriting) {
    MemoryArchive archive(m_monitor);
    // Each of a wrong kind, in another order; the refusals come in the order of reading.
    for (const char* key :
         {"predicate", "triggerOnlyOnChange", "lastEvaluationDictionary", "retriggerDate",
          "retriggerInterval", "evaluating", "ruleEdStoredDisplayValues", "ruleEdStoredCriteria", "title"})
        archive.setRootEntry(key, ValueList{});
    for (const char* key : {"ruleEdStoredDisplayValues", "ruleEdStoredCriteria"})
        archive.setRootEntry(key, Value(7));
    archive.readAs<QRVVigilPlugIn>(m_agent);
    std::vector<std::string> keys;
    for (const std::string& refusal : archive.refusals())
        keys.push_back(refusal.substr(0, refusal.find(':')));
    EXPECT_THAT(keys, ElementsAre("QRVVigilPlugIn.title", "QRVVigilPlugIn.ruleEdStoredCriteria",
                                  "QRVVigilPlugIn.ruleEdStoredDisplayValues", "QRVVigilPlugIn.evaluating",
                                  "QRVVigilPlugIn.retriggerInterval", "QRVVigilPlugIn.retriggerDate",
                                  "QRVVigilPlugIn.lastEvaluationDictionary",
                                  "QRVVigilPlugIn.triggerOnlyOnChange", "QRVVigilPlugIn.predicate"));
}

TEST_F(MonitorArchive, AllEightKeysSurviveWritingAndReading) {
    fill();
    MemoryArchive archive(m_monitor);
    const auto back = read(archive, m_agent);
    ASSERT_TRUE(back);
    EXPECT_TRUE(back->evaluating());
    EXPECT_EQ(back->retriggerInterval(), Number(2.5));
    EXPECT_EQ(back->retriggerDate(), m_world.now().plus(90.25));
    EXPECT_TRUE(back->triggerOnlyOnChange());
    EXPECT_EQ(back->predicate()->printed(), "sky.stringValue == \"Rain\"");
    ASSERT_TRUE(back->lastEvaluationDictionary());
    EXPECT_THAT(back->lastEvaluationDictionary()->keys(), ElementsAre("windChill", "sky"));
    EXPECT_EQ(back->lastEvaluationDictionary()->objectForKey("windChill")->value(), 5);
    EXPECT_EQ(back->lastEvaluationDictionary()->objectForKey("windChill")->time(), m_world.now());
    EXPECT_EQ(back->lastEvaluationDictionary()->objectForKey("sky")->stringValue(), "Rain");

    const auto rows = back->ruleEditorStoredCriteria();
    ASSERT_TRUE(rows);
    ASSERT_EQ(rows->size(), 2u);
    ASSERT_EQ(rows->at(0).size(), 2u);
    EXPECT_EQ(rows->at(0)[0]->className(), "RunScriptCriterion");
    EXPECT_EQ(rows->at(0)[0]->childAtIndex(0), rows->at(0)[1]) << "the path's nodes are the tree's own";
    EXPECT_EQ(rows->at(1)[0]->className(), "PlaySoundCriterion");
    const auto values = back->ruleEditorStoredDisplayValues();
    ASSERT_TRUE(values);
    ASSERT_EQ(values->size(), 2u);
    EXPECT_EQ(stringValue(values->at(0).at(0)), "Run script");
    EXPECT_EQ(stringValue(values->at(0).at(1)), "notify.sh roof");
    EXPECT_TRUE(std::holds_alternative<std::shared_ptr<TextField>>(values->at(0).at(1)));
    EXPECT_EQ(values->at(1), DisplayValueList{"Play Sound"});
}

TEST_F(MonitorArchive, ARestoredMonitorActsThroughItsOwnAgent) {
    fill();
    m_monitor->setRetriggerDate(Date::distantPast());
    m_monitor->setTriggerOnlyOnChange(false);
    m_world.files().setFile("/scripts/notify.sh", "echo");
    MemoryArchive archive(m_monitor);
    const auto other = std::make_shared<FakeAgent>(m_world);
    const auto back = read(archive, other);
    back->ruleEditorStoredCriteria()->pop_back();
    back->start();
    EXPECT_TRUE(FakeAgent::announce(other, {AgentProperty::text("sky", "Rain", m_world.now())}).empty());
    // Taken out, since the note of a run holds the monitor and the monitor its agent.
    const auto ran = std::exchange(other->scripts, {});
    ASSERT_EQ(ran.size(), 1u);
    EXPECT_THAT(ran[0].arguments, ElementsAre("roof"));
    EXPECT_THAT(m_agent->scripts, IsEmpty());
}

TEST_F(MonitorArchive, WhatIsNotArchivedStartsAnewAtTheTimeOfReading) {
    fill();
    m_monitor->setActionStatus("The conditions have NOT triggered an alert yet.");
    m_monitor->setCurrentPropertyStringValue("12 °C");
    m_monitor->setCurrentDate("today");
    m_monitor->setDateLastDbPull("10:00.00");
    m_monitor->setPropertyArray(std::make_shared<QRVVigilPlugIn::Names>());
    m_monitor->criteria()->clear();
    MemoryArchive archive(m_monitor);
    m_world.advance(3600);
    const auto back = read(archive, m_agent);
    EXPECT_EQ(back->startTime(), m_world.now());
    EXPECT_EQ(back->actionStatus(), "Check Activate to start.");
    EXPECT_EQ(back->currentPropertyStringValue(), "");
    EXPECT_FALSE(back->currentDate());
    EXPECT_FALSE(back->dateLastDbPull());
    EXPECT_EQ(back->propertyArray(), nullptr);
    EXPECT_EQ(back->criteria()->size(), 6u) << "the root list is built anew";
    EXPECT_EQ(back->criteria()->at(5)->className(), "SeparatorCriterion");
}

TEST_F(MonitorArchive, WithoutAConditionItGetsTheDefaultOne) {
    fill();
    MemoryArchive archive(m_monitor);
    archive.removeRootEntry("predicate");
    EXPECT_EQ(read(archive, m_agent)->predicate()->printed(),
              "windChill.unitValue < 10 OR windSpeed.unitValue > 25");
    m_monitor->setPredicate(nullptr);
    MemoryArchive absent(m_monitor);
    EXPECT_THAT(absent.rootKeys(), testing::Not(testing::Contains("predicate")));
    EXPECT_EQ(read(absent, m_agent)->predicate()->printed(),
              "windChill.unitValue < 10 OR windSpeed.unitValue > 25");
}

TEST_F(MonitorArchive, NothingElseThatIsMissingIsFilledIn) {
    fill();
    MemoryArchive archive(m_monitor);
    archive.rootEntries().clear();
    archive.setRootEntry("agent", Value(std::static_pointer_cast<Object>(m_agent)));
    const auto back = read(archive, m_agent);
    ASSERT_TRUE(back);
    EXPECT_FALSE(back->evaluating());
    EXPECT_FALSE(back->triggerOnlyOnChange());
    EXPECT_FALSE(back->retriggerInterval());
    EXPECT_FALSE(back->retriggerDate());
    EXPECT_FALSE(back->lastEvaluationDictionary());
    EXPECT_EQ(back->ruleEditorStoredCriteria(), nullptr);
    EXPECT_EQ(back->ruleEditorStoredDisplayValues(), nullptr);
}

TEST_F(MonitorArchive, OneArchivedActiveObservesFromStartWithoutAnybodysHelp) {
    m_monitor->setEvaluating(true);
    MemoryArchive archive(m_monitor);
    m_monitor.reset();
    const auto back = read(archive, m_agent);
    const auto& center = m_world.notificationCenter();
    EXPECT_EQ(center.observerCount(kAppRealTimeDataNotification, m_agent), 0u);
    back->start();
    EXPECT_EQ(center.observerCount(kAppRealTimeDataNotification, m_agent), 1u);
}

TEST_F(MonitorArchive, ABaseThatComesToNothingGivesNoMonitor) {
    MemoryArchive archive(m_monitor);
    m_world.plugInHost().admitsAll = false;
    EXPECT_EQ(archive.readAs<QRVVigilPlugIn>(m_agent), nullptr);
}

TEST_F(MonitorArchive, RowsAndSnapshotsOfAnotherFormAreRefusedByTheirKey) {
    const auto refusals = [&](const std::string& key, Value value) {
        MemoryArchive archive(m_monitor);
        archive.setRootEntry(key, std::move(value));
        archive.readAs<QRVVigilPlugIn>(m_agent);
        return archive.refusals();
    };
    const Value field(std::static_pointer_cast<Object>(std::make_shared<TextField>("x")));
    const char* const rows = "QRVVigilPlugIn.ruleEdStoredCriteria: expected a list of lists of criteria";
    EXPECT_THAT(refusals("ruleEdStoredCriteria", ValueList{Value(1)}), ElementsAre(rows));
    EXPECT_THAT(refusals("ruleEdStoredCriteria", ValueList{ValueList{field}}), ElementsAre(rows));
    const char* const shown =
        "QRVVigilPlugIn.ruleEdStoredDisplayValues: expected a list of lists of texts and controls";
    EXPECT_THAT(refusals("ruleEdStoredDisplayValues", ValueList{Value("Run script")}), ElementsAre(shown));
    EXPECT_THAT(refusals("ruleEdStoredDisplayValues", ValueList{ValueList{Value(7)}}), ElementsAre(shown));
    EXPECT_THAT(
        refusals("lastEvaluationDictionary", ValueDictionary{{"windChill", field}}),
        ElementsAre("QRVVigilPlugIn.lastEvaluationDictionary: expected a dictionary of readings under "
                    "their own keys"));
}

}  // namespace
}  // namespace vigil
