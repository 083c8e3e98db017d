#include "conditions/editor/PredicateEditor.hpp"

#include <utility>

namespace vigil {

// Each comparison takes at least 15 bytes of a printed condition, each connective 4, each group but the
// outermost 2, and there are fewer groups than comparisons.
static_assert(2 * (kMaxTextBytes + 8) / 21 <= kPredicateEditorRows);

PredicateEditor::PredicateEditor() : m_rows(Connective::And) {}
PredicateEditor::~PredicateEditor() = default;

std::string PredicateEditor::className() const {
    return "PredicateEditor";
}

void PredicateEditor::setRowTemplates(Templates rowTemplates) {
    const auto self = weak_from_this().lock();
    m_templates = std::move(rowTemplates);
    m_menu = PredicateEditorMenu(m_templates);
    if (m_rows.size() == 1) m_rows.at(0).connective = initialConnective();
    m_changes.notify();
}

Connective PredicateEditor::initialConnective() const {
    return m_menu.connectives().empty() ? Connective::And : m_menu.connectives().front();
}

void PredicateEditor::setObjectValue(std::shared_ptr<ConditionPredicate> condition) {
    const auto self = weak_from_this().lock();
    if (condition && !condition->optionalTree()) condition = nullptr;
    const bool equal = condition ? condition->isEqual(m_value.get()) : m_value == nullptr;
    m_value = std::move(condition);
    if (equal) return;
    m_rows = m_value ? PredicateEditorRows(m_value->tree(), initialConnective())
                     : PredicateEditorRows(initialConnective());
    m_changes.notify();
}

}  // namespace vigil
