#include <gmock/gmock.h>

#include "host/kit/KeyedArchive.hpp"
#include "host/kit/KitClasses.hpp"
#include "host/services/SystemFiles.hpp"
#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

constexpr const char* kFile = VIGIL_SOURCE_DIR "/examples/demo-monitor.json";

class DemoMonitor : public testing::Test {
  protected:
    DemoMonitor() {
        registerKitClasses();
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make);
        SystemFiles files;
        const auto text = files.readUtf8(kFile);
        EXPECT_TRUE(text) << text.error().message;
        if (text) m_text = text.value();
        const World::Scope scope(m_world);
        const auto read = readArchive(m_text, m_agent);
        EXPECT_TRUE(read) << read.error().message;
        if (read) m_monitor = std::dynamic_pointer_cast<QRVVigilPlugIn>(read.value());
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::string m_text;
    std::shared_ptr<QRVVigilPlugIn> m_monitor;
};

TEST_F(DemoMonitor, GivesWhatEachOfItsKeysHolds) {
    ASSERT_TRUE(m_monitor);
    EXPECT_EQ(m_monitor->agent(), m_agent);
    EXPECT_EQ(m_monitor->title(), "Frost or storm");
    EXPECT_TRUE(m_monitor->evaluating());
    EXPECT_EQ(m_monitor->retriggerInterval(), Number(2.5));
    EXPECT_EQ(m_monitor->retriggerDate(), parseDate("2026-01-31T06:02:30Z").value());
    EXPECT_TRUE(m_monitor->triggerOnlyOnChange());
    EXPECT_EQ(m_monitor->predicate()->printed(),
              "(windChill.unitValue < -5 AND sky.stringValue != \"Fog\") OR windSpeed.unitValue > 25");

    const auto snapshot = m_monitor->lastEvaluationDictionary();
    ASSERT_TRUE(snapshot);
    EXPECT_THAT(snapshot->keys(), ElementsAre("windChill", "windSpeed", "sky"));
    const AgentProperty* chill = snapshot->objectForKey("windChill");
    EXPECT_EQ(chill->name(), "Wind chill");
    EXPECT_EQ(chill->value(), -6.25);
    EXPECT_EQ(chill->unitValue(), -6.25);
    EXPECT_EQ(chill->unitStringValueWithUnitShort(), "-6.25 °C");
    EXPECT_EQ(chill->time(), parseDate("2026-01-31T06:00:00Z").value());
    EXPECT_EQ(snapshot->objectForKey("windSpeed")->value(), 10) << "raw, in metres a second";
    EXPECT_EQ(snapshot->objectForKey("windSpeed")->unitValue(), 36) << "in the user's kilometres an hour";
    EXPECT_EQ(snapshot->objectForKey("sky")->type(), kTextType);
    EXPECT_EQ(snapshot->objectForKey("sky")->stringValue(), "Snow");
}

TEST_F(DemoMonitor, HasTwoRowsThatRunScriptsThroughOneSharedRoot) {
    ASSERT_TRUE(m_monitor);
    const auto paths = m_monitor->ruleEditorStoredCriteria();
    ASSERT_EQ(paths->size(), 2u);
    for (const CriterionList& path : *paths) {
        ASSERT_EQ(path.size(), 2u);
        EXPECT_EQ(path[0]->className(), "RunScriptCriterion");
        EXPECT_EQ(path[0]->name(), "Run script");
        EXPECT_EQ(path[0]->agent(), m_agent);
        EXPECT_EQ(path[0]->childAtIndex(0), path[1]);
        EXPECT_EQ(path[1]->className(), "TextFieldCriterion");
        EXPECT_EQ(path[1]->agent(), m_agent);
    }
    EXPECT_EQ(paths->at(0)[0], paths->at(1)[0]);
    const auto values = m_monitor->ruleEditorStoredDisplayValues();
    ASSERT_EQ(values->size(), 2u);
    EXPECT_EQ(values->at(0).at(0), DisplayValue{"Run script"});
    EXPECT_EQ(stringValue(values->at(0).at(1)), "notify.sh roof");
    EXPECT_EQ(values->at(1).at(0), DisplayValue{"Run script"});
    EXPECT_EQ(stringValue(values->at(1).at(1)), "close-awning.sh  --fast");
    EXPECT_NE(values->at(0).at(1), values->at(1).at(1)) << "each row has a field of its own";
}

TEST_F(DemoMonitor, IsWrittenAgainByteForByteTheSame) {
    ASSERT_TRUE(m_monitor);
    const auto again = writeArchive(m_monitor, m_agent.get());
    ASSERT_TRUE(again) << again.error().message;
    EXPECT_EQ(again.value(), m_text);
}

TEST_F(DemoMonitor, MadeAnewFromItsPartsIsTheSameText) {
    auto made = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
    made->setTitle("Frost or storm");
    made->setEvaluating(true);
    made->setRetriggerInterval(Number(2.5));
    made->setRetriggerDate(parseDate("2026-01-31T06:02:30Z").value());
    made->setTriggerOnlyOnChange(true);
    made->setPredicate(
        ConditionPredicate::predicateWithFormat("(windChill.unitValue < -5 AND sky.stringValue != "
                                                "\"Fog\") OR windSpeed.unitValue > 25")
            .value());
    const auto root = made->criteria()->front();
    const CriterionList path = {root, root->childAtIndex(0)};
    made->setRuleEditorStoredCriteria(std::make_shared<QRVVigilPlugIn::CriteriaRows>(2, path));
    made->setRuleEditorStoredDisplayValues(
        std::make_shared<QRVVigilPlugIn::DisplayValueRows>(QRVVigilPlugIn::DisplayValueRows{
            {"Run script", std::make_shared<TextField>("notify.sh roof")},
            {"Run script", std::make_shared<TextField>("close-awning.sh  --fast")}}));
    const Date taken = parseDate("2026-01-31T06:00:00Z").value();
    const auto label = [](const char* key, const char* name, const char* unit) {
        return std::make_shared<AgentPropertyLabel>(AgentPropertyLabel{key, name, unit});
    };
    made->setLastEvaluationDictionary(EvaluationDictionary(
        Readings::make({AgentProperty(label("windChill", "Wind chill", "°C"),
                                      {.value = -6.25, .unitValue = -6.25, .time = taken}),
                        AgentProperty(label("windSpeed", "Wind speed", "km/h"),
                                      {.value = 10, .unitValue = 36, .time = taken}),
                        AgentProperty::text("sky", "Snow", taken)})));
    const auto text = writeArchive(made, m_agent.get());
    ASSERT_TRUE(text) << text.error().message;
    EXPECT_EQ(text.value(), m_text);
}

}  // namespace
}  // namespace vigil
