#include "conditions/editor/PredicateEditor.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

// Between the rule editor and the stored rows: what the editor may choose from, what is stored of its rows,
// and how stored rows come back into it. Stored rows hold the nodes and controls of the editor's rows
// themselves, so what is typed is stored at once.

namespace vigil {
namespace {

std::shared_ptr<Criterion> criterionOf(const std::shared_ptr<Object>& object) {
    return std::dynamic_pointer_cast<Criterion>(object);
}

CriterionList criteriaOf(const RuleEditor::Criteria& path) {
    CriterionList nodes;
    for (const auto& object : path)
        nodes.push_back(criterionOf(object));
    return nodes;
}

}  // namespace

std::int64_t QRVVigilPlugIn::ruleEditorNumberOfChildrenForCriterion(RuleEditor&,
                                                                    const std::shared_ptr<Object>& criterion,
                                                                    RuleEditorRowType) {
    if (criterion) {
        const auto node = criterionOf(criterion);
        return node ? node->numberOfChildren() : 0;
    }
    const auto roots = criteria();
    return roots ? static_cast<std::int64_t>(roots->size()) : 0;
}

std::shared_ptr<Object> QRVVigilPlugIn::ruleEditorChildForCriterion(RuleEditor&, std::int64_t index,
                                                                    const std::shared_ptr<Object>& criterion,
                                                                    RuleEditorRowType) {
    if (criterion) {
        const auto node = criterionOf(criterion);
        return node ? node->childAtIndex(index) : nullptr;
    }
    const auto roots = criteria();
    if (!roots) return nullptr;
    // A negative index becomes one that is too large.
    return roots->at(static_cast<std::size_t>(index));
}

DisplayValue QRVVigilPlugIn::ruleEditorDisplayValueForCriterion(RuleEditor&,
                                                                const std::shared_ptr<Object>& criterion,
                                                                std::int64_t) {
    const auto node = criterionOf(criterion);
    return node ? node->displayValue() : DisplayValue{};
}

void QRVVigilPlugIn::ruleEditorRowsDidChange(const Notification& notification) {
    const auto changed = std::dynamic_pointer_cast<const RuleEditor>(notification.object);
    const auto paths = std::make_shared<CriteriaRows>();
    const auto values = std::make_shared<DisplayValueRows>();
    setRuleEditorStoredCriteria(paths);
    setRuleEditorStoredDisplayValues(values);
    const auto own = ruleEditor();
    for (std::int64_t row = 0; own && changed && row < own->numberOfRows(); ++row) {
        paths->push_back(criteriaOf(changed->criteriaForRow(row)));
        values->push_back(changed->displayValuesForRow(row));
    }
}

void QRVVigilPlugIn::awakeFromNib() {
    loadPredicate();
    const auto editor = ruleEditor();
    if (editor) {
        editor->setCanRemoveAllRows(false);
        editor->setNestingMode(RuleEditorNestingMode::List);
    }
    // Copies: each row that is added makes the editor's rows the stored ones.
    const auto storedPaths = ruleEditorStoredCriteria();
    const auto storedValues = ruleEditorStoredDisplayValues();
    const CriteriaRows paths = storedPaths ? *storedPaths : CriteriaRows{};
    const DisplayValueRows values = storedValues ? *storedValues : DisplayValueRows{};
    for (std::size_t row = 0; editor && row < paths.size(); ++row) {
        editor->addRow(this);
        editor->setCriteria({paths[row].begin(), paths[row].end()}, values.at(row),
                            static_cast<std::int64_t>(row));
    }
    const auto rebuilt = ruleEditorStoredCriteria();
    if (editor && (!rebuilt || rebuilt->empty())) editor->addRow(this);
    if (const auto conditions = predicateEditor()) conditions->setObjectValue(predicate());
}

}  // namespace vigil
