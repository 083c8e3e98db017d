#include <gmock/gmock.h>

#include "conditions/editor/PredicateEditor.hpp"
#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

// In which order a monitor's view comes to life: templates, rows, condition.

namespace vigil {
namespace {

using testing::ElementsAre;

/// Looks at its two editors whenever the rows change.
class WatchingMonitor : public QRVVigilPlugIn {
  public:
    void ruleEditorRowsDidChange(const Notification& notification) override {
        const auto conditions = predicateEditor();
        templatesAtRows.push_back(conditions->rowTemplates().size());
        conditionAtRows.push_back(conditions->objectValue() != nullptr);
        boundAtRows.push_back(!ruleEditor()->canRemoveAllRows() &&
                              ruleEditor()->nestingMode() == RuleEditorNestingMode::List);
        QRVVigilPlugIn::ruleEditorRowsDidChange(notification);
        storedAtRows.push_back(ruleEditorStoredCriteria()->size());
    }
    std::vector<std::size_t> templatesAtRows;
    std::vector<bool> conditionAtRows;
    std::vector<bool> boundAtRows;
    std::vector<std::size_t> storedAtRows;
};

class Awaking : public testing::Test {
  protected:
    Awaking() {
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make, std::make_shared<Bundle>());
        m_monitor->outletNamed("ruleEditor")->connect(*m_monitor, m_rows);
        m_monitor->outletNamed("predicateEditor")->connect(*m_monitor, m_conditions);
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<WatchingMonitor> m_monitor = makePlugIn<WatchingMonitor>(m_agent, nullptr);
    std::shared_ptr<RuleEditor> m_rows = std::make_shared<RuleEditor>();
    std::shared_ptr<PredicateEditor> m_conditions = std::make_shared<PredicateEditor>();
};

TEST_F(Awaking, TheTemplatesStandBeforeTheRowsAndTheConditionIsShownLast) {
    m_monitor->awakeFromNib();
    EXPECT_THAT(m_monitor->templatesAtRows, ElementsAre(4u));
    EXPECT_THAT(m_monitor->conditionAtRows, ElementsAre(false));
    EXPECT_THAT(m_monitor->boundAtRows, ElementsAre(true)) << "the editor keeps one row, in one flat list";
    EXPECT_EQ(m_conditions->objectValue(), m_monitor->predicate());
}

TEST_F(Awaking, EachStoredRowIsAddedAndThenReplacedAndEveryStepRebuildsTheStoredRows) {
    const auto paths = std::make_shared<QRVVigilPlugIn::CriteriaRows>();
    const auto values = std::make_shared<QRVVigilPlugIn::DisplayValueRows>();
    for (int row = 0; row < 3; ++row) {
        paths->push_back({SpeakTextCriterion::criterionWithAgent(m_agent)});
        values->push_back({"Speak Text"});
    }
    m_monitor->setRuleEditorStoredCriteria(paths);
    m_monitor->setRuleEditorStoredDisplayValues(values);
    m_monitor->awakeFromNib();
    EXPECT_THAT(m_monitor->storedAtRows, ElementsAre(1u, 1u, 2u, 2u, 3u, 3u));
    EXPECT_EQ(*m_monitor->ruleEditorStoredCriteria(), *paths);
    EXPECT_EQ(paths->size(), 3u) << "the lists that were stored before are not touched";
}

TEST_F(Awaking, AMonitorWithoutAConditionShowsNone) {
    m_monitor->setPredicate(nullptr);
    m_monitor->awakeFromNib();
    EXPECT_EQ(m_conditions->objectValue(), nullptr);
    EXPECT_EQ(m_conditions->numberOfRows(), 1u) << "the outermost group";
}

}  // namespace
}  // namespace vigil
