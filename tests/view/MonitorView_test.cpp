#include <filesystem>
#include <set>

#include <gmock/gmock.h>

#include "conditions/ConditionPredicate.hpp"
#include "conditions/editor/PredicateEditor.hpp"
#include "host/kit/InterfaceFile_Widgets.hpp"
#include "host/services/SystemFiles.hpp"
#include "platform/Button.hpp"
#include "platform/RuleEditor.hpp"
#include "tests/view/ShownMonitor.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;
using test::ShownMonitor;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

class MonitorView : public testing::Test {
  protected:
    /// The condition as a value for the property.
    static Value condition(std::string_view text) {
        return Value(std::static_pointer_cast<Object>(ConditionPredicate::predicateWithFormat(text).value()));
    }

    ShownMonitor m_monitor;
};

TEST_F(MonitorView, EveryNameThatAnInterfaceFileBindsStandsInItsOwnersTable) {
    const auto popUpOwner = m_monitor.module().make("PopUpCriterion");
    const std::map<std::string, InterfaceOwner*> owners = {
        {"QRVVigilPlugIn.ui", &m_monitor.owner()},
        {"PopUpButton.ui", dynamic_cast<InterfaceOwner*>(popUpOwner.get())},
        {"TextField.ui", nullptr}};
    std::multiset<std::string> bound, asked, filled;
    SystemFiles files;
    for (const auto& entry : fs::directory_iterator(VIGIL_SOURCE_DIR "/resources")) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() != ".ui") continue;
        ASSERT_TRUE(owners.contains(name)) << name << " has no owner that this test knows";
        const auto text = files.readUtf8(m_monitor.module().bundle()->resourcePath + "/" + name);
        ASSERT_TRUE(text) << name << " is not in the bundle";
        const auto widgets = parseInterfaceFile(text.value());
        ASSERT_TRUE(widgets) << name << ": " << widgets.error().message;
        for (const InterfaceWidget& widget : widgets.value()) {
            const InterfaceOwner* owner = owners.at(name);
            if (!widget.bind && !widget.action && !widget.outlet) continue;
            ASSERT_TRUE(owner) << name << " is loaded without an owner, and names something of one";
            if (widget.bind) {
                EXPECT_TRUE(owner->propertyNamed(*widget.bind)) << name << ": " << *widget.bind;
                bound.insert(*widget.bind);
            }
            if (widget.action) {
                EXPECT_TRUE(owner->actionNamed(*widget.action)) << name << ": " << *widget.action;
                asked.insert(*widget.action);
            }
            if (widget.outlet) {
                EXPECT_TRUE(owner->outletNamed(*widget.outlet)) << name << ": " << *widget.outlet;
                filled.insert(*widget.outlet);
            }
        }
    }
    EXPECT_THAT(bound, UnorderedElementsAre("evaluating", "predicate", "triggerOnlyOnChange",
                                            "retriggerInterval", "actionStatus"));
    EXPECT_THAT(asked, UnorderedElementsAre(
                           "activateButtonClicked:", "testSound:", "determineWhatPartOfPredicateCauseAlert"));
    EXPECT_THAT(filled, UnorderedElementsAre("activateButton", "predicateEditor", "ruleEditor"));
}

TEST_F(MonitorView, LoadsIntoModelsWithOneDefaultRowAndTheStoredCondition) {
    m_monitor.show();
    const auto rules = m_monitor.control<RuleEditor>();
    ASSERT_EQ(rules->numberOfRows(), 1);
    EXPECT_EQ(stringValue(rules->displayValuesForRow(0).at(0)), "Run script");
    EXPECT_EQ(m_monitor.control<PredicateEditor>()->objectValue()->printed(), m_monitor.condition());
    std::vector<std::string> buttons;
    for (const auto& button : m_monitor.controls<Button>())
        buttons.push_back(button->title());
    EXPECT_THAT(buttons, ElementsAre("&Activate", "Only readings that are &newer and have changed",
                                     "E&xplain", "&Test sounds and speech"));
}

TEST_F(MonitorView, TheConditionsRowsOfferTheStationsReadings) {
    m_monitor.show();
    const auto rows = m_monitor.control<PredicateEditor>()->rows();
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_TRUE(rows[1].popUps.at(0).chosen) << "windChill, which the station knows";
    EXPECT_THAT(m_monitor.control<PredicateEditor>()->choices(1, 0),
                ElementsAre("windChill", "windSpeed", "sky"));
}

TEST_F(MonitorView, SwitchesShowAndSetTheirProperties) {
    m_monitor.set("triggerOnlyOnChange", Value(true));
    m_monitor.show();
    const auto switches = m_monitor.controls<Button>();
    EXPECT_FALSE(switches.at(0)->state());
    EXPECT_TRUE(switches.at(1)->state());
    switches[0]->setState(true);
    EXPECT_EQ(*m_monitor.get("evaluating").as<bool>(), true);
    m_monitor.set("evaluating", Value(false));
    EXPECT_FALSE(switches[0]->state());
    switches[1]->setState(false);
    EXPECT_EQ(*m_monitor.get("triggerOnlyOnChange").as<bool>(), false);
}

TEST_F(MonitorView, EveryEditOfTheConditionReplacesThePredicateAndShowingItDoesNot) {
    const Value before = m_monitor.get("predicate");
    m_monitor.show();
    EXPECT_EQ(*m_monitor.get("predicate").as<std::shared_ptr<Object>>(),
              *before.as<std::shared_ptr<Object>>())
        << "the same object as before it was shown";
    const auto editor = m_monitor.control<PredicateEditor>();
    ASSERT_TRUE(editor->setValueText(1, "-5"));
    EXPECT_EQ(m_monitor.condition(), "windChill.unitValue < -5 OR windSpeed.unitValue > 25");
    ASSERT_TRUE(editor->removeRow(2));
    EXPECT_EQ(m_monitor.condition(), "windChill.unitValue < -5");
    ASSERT_TRUE(editor->removeRow(1));
    EXPECT_TRUE(m_monitor.get("predicate").isNothing()) << "an empty editor is no condition";
}

TEST_F(MonitorView, AConditionThatIsSetElsewhereIsShown) {
    m_monitor.show();
    m_monitor.set("predicate", condition("sky.stringValue == \"Fog\""));
    EXPECT_EQ(m_monitor.control<PredicateEditor>()->objectValue()->printed(), "sky.stringValue == \"Fog\"");
    m_monitor.set("predicate", Value());
    EXPECT_EQ(m_monitor.control<PredicateEditor>()->objectValue(), nullptr);
}

TEST_F(MonitorView, AnotherViewOfTheMonitorShowsTheSameNodesAndControls) {
    m_monitor.show();
    const auto first = m_monitor.control<RuleEditor>();
    first->addRow(nullptr);
    first->choose({.row = 1, .column = 0}, 1);
    m_monitor.show();
    const auto second = m_monitor.control<RuleEditor>();
    ASSERT_NE(first, second);
    ASSERT_EQ(second->numberOfRows(), 2);
    for (std::int64_t row = 0; row < 2; ++row) {
        EXPECT_EQ(second->criteriaForRow(row), first->criteriaForRow(row));
        EXPECT_EQ(second->displayValuesForRow(row), first->displayValuesForRow(row));
    }
}

}  // namespace
}  // namespace vigil
