#include <random>
#include <stdexcept>

#include <gmock/gmock.h>

#include "platform/ClassRegistry.hpp"
#include "platform/RuleEditor.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/ConditionGenerator.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

/// Notes the rows that it is asked to run.
class NotingCriterion : public Criterion {
  public:
    void performActionWithDisplayValues(const DisplayValueList& displayValues) override {
        heard.push_back(stringValue(displayValues.at(1)).value_or("(null)"));
    }
    std::vector<std::string> heard;
};

class RuleBridge : public testing::Test {
  protected:
    RuleBridge() {
        auto bundle = std::make_shared<Bundle>();
        bundle->resourcePath = "/resources";
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make, bundle);
        m_world.files().setFolder("/resources", {"bell.wav", "horn.mp3"});
    }

    /// What loading the interface file comes to.
    void showView() {
        m_editor = std::make_shared<RuleEditor>();
        ASSERT_TRUE(m_monitor->outletNamed("ruleEditor")->connect(*m_monitor, m_editor));
        m_monitor->awakeFromNib();
    }

    /// A row as an archive brings it: nodes that are not those of the root list, and a field with a text.
    static void store(QRVVigilPlugIn::CriteriaRows& paths, QRVVigilPlugIn::DisplayValueRows& values,
                      const std::shared_ptr<Criterion>& root, const std::string& text) {
        paths.push_back({root, root->childAtIndex(0)});
        values.push_back({*root->name(), std::make_shared<TextField>(text)});
    }

    void storeTwoRows() {
        auto paths = std::make_shared<QRVVigilPlugIn::CriteriaRows>();
        auto values = std::make_shared<QRVVigilPlugIn::DisplayValueRows>();
        store(*paths, *values, SpeakTextCriterion::criterionWithAgent(m_agent), "Gale");
        store(*paths, *values, SendEmailCriterion::criterionWithAgent(m_agent), "me@example.org");
        m_monitor->setRuleEditorStoredCriteria(paths);
        m_monitor->setRuleEditorStoredDisplayValues(values);
    }

    void expectStoredRowsAreTheEditors() const {
        const auto paths = m_monitor->ruleEditorStoredCriteria();
        const auto values = m_monitor->ruleEditorStoredDisplayValues();
        ASSERT_TRUE(paths && values);
        ASSERT_EQ(static_cast<std::int64_t>(paths->size()), m_editor->numberOfRows());
        ASSERT_EQ(static_cast<std::int64_t>(values->size()), m_editor->numberOfRows());
        for (std::int64_t row = 0; row < m_editor->numberOfRows(); ++row) {
            const auto i = static_cast<std::size_t>(row);
            const auto nodes = m_editor->criteriaForRow(row);
            EXPECT_TRUE(std::equal(nodes.begin(), nodes.end(), (*paths)[i].begin(), (*paths)[i].end()));
            EXPECT_EQ((*values)[i], m_editor->displayValuesForRow(row)) << "the same controls";
        }
    }

    std::shared_ptr<TextField> fieldOf(std::int64_t row) const {
        return std::get<std::shared_ptr<TextField>>(m_editor->displayValuesForRow(row).at(1));
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
    std::shared_ptr<RuleEditor> m_editor;
};

TEST_F(RuleBridge, RestoringTwoRowsGivesExactlyThoseInTheirOrderAndEqualStoredLists) {
    storeTwoRows();
    const auto paths = *m_monitor->ruleEditorStoredCriteria();
    const auto values = *m_monitor->ruleEditorStoredDisplayValues();
    showView();
    ASSERT_EQ(m_editor->numberOfRows(), 2);
    expectStoredRowsAreTheEditors();
    EXPECT_EQ(*m_monitor->ruleEditorStoredCriteria(), paths) << "the archived nodes themselves";
    EXPECT_EQ(*m_monitor->ruleEditorStoredDisplayValues(), values) << "the archived controls themselves";
    EXPECT_EQ(fieldOf(0)->stringValue(), "Gale");
    EXPECT_EQ(fieldOf(1)->stringValue(), "me@example.org") << "a root that is not offered is kept";
    EXPECT_EQ(m_editor->choices({.row = 0, .column = 0}).chosen, 3u) << "Speak Text, by its name";
    EXPECT_EQ(m_editor->choices({.row = 0, .column = 1}).choices.at(0).displayValue, values[0][1]);
    EXPECT_EQ(m_editor->choices({.row = 1, .column = 0}).chosen, std::nullopt);
}

TEST_F(RuleBridge, RestoringNoRowsGivesOneDefaultRowAndStoredListsOfLengthOne) {
    EXPECT_EQ(m_monitor->ruleEditorStoredCriteria(), nullptr) << "a new monitor has no lists";
    showView();
    EXPECT_EQ(m_editor->numberOfRows(), 1);
    EXPECT_EQ(m_editor->criteriaForRow(0).at(0), m_monitor->criteria()->at(0));
    EXPECT_EQ(stringValue(m_editor->displayValuesForRow(0).at(0)), "Run script");
    expectStoredRowsAreTheEditors();
    m_monitor->setRuleEditorStoredCriteria(std::make_shared<QRVVigilPlugIn::CriteriaRows>());
    m_monitor->setRuleEditorStoredDisplayValues(nullptr);
    showView();
    EXPECT_EQ(m_monitor->ruleEditorStoredCriteria()->size(), 1u) << "empty lists are no rows either";
}

TEST_F(RuleBridge, RemovingTheOnlyRowIsRefused) {
    showView();
    EXPECT_FALSE(m_editor->removeRowAtIndex(0));
    EXPECT_EQ(m_editor->numberOfRows(), 1);
    expectStoredRowsAreTheEditors();
    EXPECT_TRUE(m_editor->addRow(nullptr)) << "and rows form a list";
    EXPECT_TRUE(m_editor->removeRowAtIndex(0));
    expectStoredRowsAreTheEditors();
}

TEST_F(RuleBridge, ATextThatIsTypedIsSeenByTheStoredRowWithoutAnyOtherChange) {
    showView();
    const auto lists = m_monitor->ruleEditorStoredDisplayValues();
    fieldOf(0)->setStringValue("alarm.sh 7");
    EXPECT_EQ(m_monitor->ruleEditorStoredDisplayValues(), lists) << "no rebuild took place";
    EXPECT_EQ(stringValue(lists->at(0).at(1)), "alarm.sh 7");
}

TEST_F(RuleBridge, EveryChangeReplacesBothListsWholeAndLeavesEarlierOnesAsTheyWere) {
    showView();
    const auto paths = m_monitor->ruleEditorStoredCriteria();
    const auto values = m_monitor->ruleEditorStoredDisplayValues();
    m_editor->choose({.row = 0, .column = 0}, 1);
    EXPECT_NE(m_monitor->ruleEditorStoredCriteria(), paths);
    EXPECT_NE(m_monitor->ruleEditorStoredDisplayValues(), values);
    EXPECT_EQ(paths->at(0).at(0)->name(), "Run script");
    EXPECT_EQ(values->size(), 1u);
    expectStoredRowsAreTheEditors();
    EXPECT_EQ(titleOfSelectedItem(m_monitor->ruleEditorStoredDisplayValues()->at(0).at(1)), "bell.wav");
}

TEST_F(RuleBridge, RowsAreCountedByTheMonitorsEditorAndReadFromTheOneThatChanged) {
    showView();
    const auto other = std::make_shared<RuleEditor>();
    other->setDelegate(m_monitor);
    other->setNestingMode(RuleEditorNestingMode::List);
    other->addRow(nullptr);
    other->addRow(nullptr);
    other->choose({.row = 0, .column = 0}, 3);
    EXPECT_EQ(m_monitor->ruleEditorStoredCriteria()->size(), 1u) << "one row in the monitor's own editor";
    EXPECT_EQ(m_monitor->ruleEditorStoredCriteria()->at(0).at(0)->name(), "Speak Text");
    m_editor->addRow(nullptr);
    EXPECT_THROW(other->removeRowAtIndex(1), std::out_of_range) << "it has fewer rows than are counted";
}

TEST_F(RuleBridge, FewerDisplayValuesThanCriteriaThrowAndTheRowsBeforeStand) {
    storeTwoRows();
    m_monitor->ruleEditorStoredDisplayValues()->pop_back();
    m_editor = std::make_shared<RuleEditor>();
    m_monitor->outletNamed("ruleEditor")->connect(*m_monitor, m_editor);
    EXPECT_THROW(m_monitor->awakeFromNib(), std::out_of_range);
    EXPECT_EQ(fieldOf(0)->stringValue(), "Gale");
    EXPECT_EQ(m_editor->numberOfRows(), 2) << "the row that fails was added before its values were asked for";
}

TEST_F(RuleBridge, StoredRowsOutliveTheViewAndRunUnchanged) {
    showView();
    const auto noting = std::make_shared<NotingCriterion>();
    noting->setName("Note");
    const auto field = std::make_shared<TextField>("before");
    m_editor->setCriteria({noting}, {std::string("Note"), field}, 0);
    ASSERT_TRUE(m_monitor->outletNamed("ruleEditor")->connect(*m_monitor, nullptr));
    m_editor.reset();
    field->setStringValue("after");
    m_monitor->performActions();
    EXPECT_THAT(noting->heard, testing::ElementsAre("after"));
}

TEST_F(RuleBridge, AnEditorThatIsNoLongerTheMonitorsDoesNotChangeItsRows) {
    showView();
    const auto before = m_editor;
    showView();
    EXPECT_EQ(before->delegate(), nullptr);
    EXPECT_EQ(m_editor->delegate(), m_monitor);
    before->removeRowAtIndex(0);
    expectStoredRowsAreTheEditors();
}

TEST_F(RuleBridge, ShownAgainTheRowsKeepTheirNodesAndControls) {
    showView();
    m_editor->addRow(nullptr);
    m_editor->choose({.row = 1, .column = 0}, 3);
    fieldOf(1)->setStringValue("Frost");
    const auto values = *m_monitor->ruleEditorStoredDisplayValues();
    showView();
    EXPECT_EQ(*m_monitor->ruleEditorStoredDisplayValues(), values);
    expectStoredRowsAreTheEditors();
}

TEST_F(RuleBridge, WithoutAnEditorAwakingLeavesTheStoredRows) {
    storeTwoRows();
    const auto paths = m_monitor->ruleEditorStoredCriteria();
    m_monitor->awakeFromNib();
    EXPECT_EQ(m_monitor->ruleEditorStoredCriteria(), paths);
}

TEST_F(RuleBridge, AnOutletTakesItsOwnKindAlone) {
    EXPECT_FALSE(m_monitor->outletNamed("ruleEditor")->connect(*m_monitor, std::make_shared<TextField>()));
    EXPECT_FALSE(
        m_monitor->outletNamed("activateButton")->connect(*m_monitor, std::make_shared<RuleEditor>()));
    EXPECT_EQ(m_monitor->ruleEditor(), nullptr);
    EXPECT_EQ(m_monitor->activateButton(), nullptr);
}

TEST_F(RuleBridge, AfterRandomEditsTheStoredRowsAreAlwaysTheEditors) {
    storeTwoRows();
    showView();
    std::mt19937 random(20'261'121);
    const auto below = [&](std::int64_t end) {
        return std::uniform_int_distribution<std::int64_t>(0, end - 1)(random);
    };
    for (int i = 0; i < 300 * test::longFactor(); ++i) {
        const std::int64_t row = below(m_editor->numberOfRows());
        switch (below(4)) {
            case 0:
                m_editor->insertRowAtIndex(below(m_editor->numberOfRows() + 1));
                break;
            case 1:
                m_editor->removeRowAtIndex(row);
                break;
            case 2:
                m_editor->choose({.row = row, .column = 0}, below(6));
                break;
            default:
                for (const DisplayValue& value : m_editor->displayValuesForRow(row))
                    if (const auto* field = std::get_if<std::shared_ptr<TextField>>(&value))
                        (*field)->setStringValue(std::to_string(i));
        }
        ASSERT_GT(m_editor->numberOfRows(), 0);
        expectStoredRowsAreTheEditors();
        if (HasFailure()) FAIL() << "after edit " << i;
    }
}

}  // namespace
}  // namespace vigil
