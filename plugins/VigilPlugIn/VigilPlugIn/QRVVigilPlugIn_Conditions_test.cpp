#include <gmock/gmock.h>

#include "conditions/editor/PredicateEditor.hpp"
#include "platform/Controls.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ConditionTemplates : public testing::Test {
  protected:
    static AgentProperty reading(const std::string& key, FourCharCode type, const std::string& name = "",
                                 bool visible = true) {
        auto label = std::make_shared<AgentPropertyLabel>();
        label->propertyName = key;
        label->name = name.empty() ? "Name of " + key : name;
        label->type = type;
        label->visible = visible;
        return AgentProperty(std::move(label), {});
    }

    void load(std::vector<AgentProperty> readings) {
        m_agent->setProperties(std::move(readings));
        m_monitor->setPredicateEditor(m_editor);
        m_monitor->loadPredicate();
    }
    const PredicateEditorRowTemplate& at(std::size_t i) const { return *m_editor->rowTemplates().at(i); }
    static std::vector<std::string> keyPaths(const PredicateEditorRowTemplate& of) {
        std::vector<std::string> all;
        for (const auto& item : of.itemArray())
            all.push_back(item.representedObject().keyPath());
        return all;
    }
    static std::vector<std::string> titles(const PredicateEditorRowTemplate& of) {
        std::vector<std::string> all;
        for (const auto& item : of.itemArray())
            all.push_back(item.title());
        return all;
    }
    template <class T>
    static std::vector<int> codes(const std::vector<T>& of) {
        std::vector<int> all;
        for (const T one : of)
            all.push_back(static_cast<int>(one));
        return all;
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
    std::shared_ptr<PredicateEditor> m_editor = std::make_shared<PredicateEditor>();
};

TEST_F(ConditionTemplates, AStationWithoutReadingsHasAllFourTheGroupsFirst) {
    load({});
    ASSERT_EQ(m_editor->rowTemplates().size(), 4u);
    EXPECT_THAT(codes(at(0).compoundTypes()), ElementsAre(1, 2));
    for (std::size_t i = 1; i < 4; ++i) {
        EXPECT_FALSE(at(i).isCompound());
        EXPECT_THAT(at(i).itemArray(), IsEmpty());
    }
    EXPECT_THAT(*m_monitor->propertyArray(), IsEmpty());
}

TEST_F(ConditionTemplates, NumbersTextsAndDatesHaveTheirTypesAndOperatorsInMenuOrder) {
    load({});
    EXPECT_EQ(static_cast<int>(at(1).rightExpressionAttributeType()), 600);
    EXPECT_EQ(static_cast<int>(at(2).rightExpressionAttributeType()), 700);
    EXPECT_EQ(static_cast<int>(at(3).rightExpressionAttributeType()), 900);
    EXPECT_THAT(codes(at(1).operators()), ElementsAre(4, 0, 2, 1, 3));
    EXPECT_THAT(codes(at(2).operators()), ElementsAre(4, 5));
    EXPECT_THAT(codes(at(3).operators()), ElementsAre(4, 5));
    for (std::size_t i = 1; i < 4; ++i) {
        EXPECT_EQ(static_cast<int>(at(i).modifier()), 0);
        EXPECT_EQ(static_cast<unsigned>(at(i).options()), 0u);
    }
}

TEST_F(ConditionTemplates, ADateIsOfferedNothingButIsAndIsNot) {
    load({reading("sunset", kDateType, "Sunset"), reading("wind", kNumericType, "Wind")});
    m_editor->setObjectValue(
        ConditionPredicate::predicateWithFormat("sunset.value == CAST(0, \"NSDate\") OR wind.unitValue > 1")
            .value());
    EXPECT_EQ(m_editor->rows().at(1).popUps.at(0).shown, "Sunset");
    EXPECT_THAT(m_editor->choices(1, 1), ElementsAre("is", "is not"));
    EXPECT_EQ(m_editor->choices(2, 1).size(), 5u) << "a number is offered an order";
}

TEST_F(ConditionTemplates, EachReadingGoesToTheTemplateOfItsKindWithItsMember) {
    load({reading("wind", kNumericType), reading("sky", kTextType), reading("sunset", kDateType),
          reading("odd", fourCharCode("KZxx")), reading("temp", kNumericType)});
    EXPECT_THAT(keyPaths(at(1)), ElementsAre("odd.unitValue", "temp.unitValue", "wind.unitValue"));
    EXPECT_THAT(keyPaths(at(2)), ElementsAre("sky.stringValue"));
    EXPECT_THAT(keyPaths(at(3)), ElementsAre("sunset.value"));
}

TEST_F(ConditionTemplates, KeysAreSortedWithoutRegardToCase) {
    load({reading("beta", kNumericType), reading("Alpha", kNumericType), reading("gamma", kNumericType)});
    EXPECT_THAT(*m_monitor->propertyArray(), ElementsAre("Alpha", "beta", "gamma"));
    EXPECT_THAT(keyPaths(at(1)), ElementsAre("Alpha.unitValue", "beta.unitValue", "gamma.unitValue"));
    load({reading("Gamma", kTextType), reading("alpha", kNumericType), reading("Beta", kDateType)});
    EXPECT_THAT(*m_monitor->propertyArray(), ElementsAre("alpha", "Beta", "Gamma")) << "whatever their kinds";
}

TEST_F(ConditionTemplates, TheOrderIsTheWorldsOwn) {
    const int before = m_world.collation().asked;
    load({reading("b", kNumericType), reading("a", kNumericType)});
    EXPECT_GT(m_world.collation().asked, before);
}

TEST_F(ConditionTemplates, KeysThatSortEqualKeepTheirOrder) {
    load({reading("key", kNumericType), reading("KEY", kNumericType), reading("a", kNumericType),
          reading("Key", kNumericType)});
    EXPECT_THAT(*m_monitor->propertyArray(), ElementsAre("a", "key", "KEY", "Key"));
    load({reading("Key", kNumericType), reading("KEY", kNumericType), reading("key", kNumericType)});
    EXPECT_THAT(*m_monitor->propertyArray(), ElementsAre("Key", "KEY", "key"));
}

TEST_F(ConditionTemplates, TitlesAreDisplayNamesInTheOrderOfTheKeys) {
    load({reading("a", kNumericType, "Zulu"), reading("b", kNumericType, "Alpha")});
    EXPECT_THAT(titles(at(1)), ElementsAre("Zulu", "Alpha"));
}

TEST_F(ConditionTemplates, AHiddenReadingIsOfferedAllTheSame) {
    load({reading("hidden", kNumericType, "Hidden", false)});
    EXPECT_THAT(titles(at(1)), ElementsAre("Hidden"));
    EXPECT_THAT(*m_monitor->propertyArray(), ElementsAre("hidden"));
}

TEST_F(ConditionTemplates, TheListOfKeysIsMadeAnewEveryTime) {
    load({reading("a", kNumericType)});
    const auto first = m_monitor->propertyArray();
    load({reading("b", kNumericType)});
    EXPECT_THAT(*m_monitor->propertyArray(), ElementsAre("b"));
    EXPECT_THAT(*first, ElementsAre("a"));
}

TEST_F(ConditionTemplates, AReadingThatComesLaterIsOfferedByTheNextSetUpOnly) {
    load({reading("a", kNumericType)});
    m_agent->setProperties(
        std::vector<AgentProperty>{reading("a", kNumericType), reading("b", kNumericType)});
    ASSERT_TRUE(m_editor->addRow(0, 0));
    EXPECT_THAT(m_editor->choices(1, 0), ElementsAre("Name of a"));
    m_monitor->loadPredicate();
    EXPECT_THAT(m_editor->choices(1, 0), ElementsAre("Name of a", "Name of b"));
}

TEST_F(ConditionTemplates, WithoutAnEditorOnlyTheListOfKeysIsMade) {
    m_agent->setProperties(std::vector<AgentProperty>{reading("a", kNumericType)});
    m_monitor->loadPredicate();
    EXPECT_THAT(*m_monitor->propertyArray(), ElementsAre("a"));
}

TEST_F(ConditionTemplates, ASetUpOperationRewritesPlainKeysAlone) {
    m_agent->setProperties(std::vector<AgentProperty>{reading("a", kNumericType, "Anna")});
    const auto made = PredicateEditorRowTemplate::initWithLeftExpressions(
        {KeyPathExpression::expressionForKeyPath("a"), KeyPathExpression::expressionForKeyPath("gone")},
        AttributeType::Date, ComparisonPredicateModifier::Direct, {}, ComparisonPredicateOptions::None);
    m_monitor->setupPredicateDateTemplates(*made);
    EXPECT_THAT(keyPaths(*made), ElementsAre("a.value", "gone"));
    EXPECT_THAT(titles(*made), ElementsAre("Anna", "gone"));
}

TEST_F(ConditionTemplates, AnEditorThatWakesShowsTheConditionAndHasTheTemplates) {
    m_agent->setProperties(std::vector<AgentProperty>{reading("windChill", kNumericType, "Wind chill")});
    const auto before = m_monitor->predicate();
    ASSERT_TRUE(m_monitor->outletNamed("predicateEditor")->connect(*m_monitor, m_editor));
    m_monitor->awakeFromNib();
    EXPECT_EQ(m_editor->objectValue(), before);
    EXPECT_EQ(m_monitor->predicate(), before) << "showing the condition is no edit";
    EXPECT_EQ(m_editor->rows().at(1).popUps.at(0).shown, "Wind chill");
}

TEST_F(ConditionTemplates, EveryEditReplacesTheConditionAndAnEmptyEditorLeavesNone) {
    m_agent->setProperties(std::vector<AgentProperty>{reading("windChill", kNumericType)});
    ASSERT_TRUE(m_monitor->outletNamed("predicateEditor")->connect(*m_monitor, m_editor));
    m_monitor->awakeFromNib();
    ASSERT_TRUE(m_editor->setValueText(1, "8"));
    EXPECT_EQ(m_monitor->predicate()->printed(), "windChill.unitValue < 8 OR windSpeed.unitValue > 25");
    ASSERT_TRUE(m_editor->removeRow(2));
    EXPECT_EQ(m_monitor->predicate()->printed(), "windChill.unitValue < 8");
    ASSERT_TRUE(m_editor->removeRow(1));
    EXPECT_EQ(m_monitor->predicate(), nullptr);
}

TEST_F(ConditionTemplates, OnlyTheEditorThatIsConnectedCounts) {
    const auto other = std::make_shared<PredicateEditor>();
    const auto* outlet = m_monitor->outletNamed("predicateEditor");
    ASSERT_TRUE(outlet->connect(*m_monitor, m_editor));
    m_monitor->awakeFromNib();
    ASSERT_TRUE(outlet->connect(*m_monitor, other));
    EXPECT_EQ(m_monitor->predicateEditor(), other);
    const auto before = m_monitor->predicate();
    ASSERT_TRUE(m_editor->removeRow(1));
    EXPECT_EQ(m_monitor->predicate(), before);
    EXPECT_FALSE(outlet->connect(*m_monitor, std::make_shared<TextField>()));
    ASSERT_TRUE(outlet->connect(*m_monitor, nullptr));
    EXPECT_EQ(m_monitor->predicateEditor(), nullptr);
}

TEST_F(ConditionTemplates, AnEditorThatOutlivesItsMonitorMayBeEdited) {
    m_agent->setProperties(std::vector<AgentProperty>{reading("a", kNumericType)});
    ASSERT_TRUE(m_monitor->outletNamed("predicateEditor")->connect(*m_monitor, m_editor));
    m_monitor->awakeFromNib();
    m_monitor.reset();
    EXPECT_TRUE(m_editor->addRow(0, 0));
}

TEST_F(ConditionTemplates, LoadingThemNeverTouchesTheCondition) {
    const auto before = m_monitor->predicate();
    int sets = 0;
    const auto token = m_monitor->propertyNamed("predicate")->observe(*m_monitor, [&] { ++sets; });
    load({reading("a", kNumericType)});
    EXPECT_EQ(m_monitor->predicate(), before);
    EXPECT_EQ(sets, 0);
}

}  // namespace
}  // namespace vigil
