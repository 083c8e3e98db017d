#include "platform/RuleEditor.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vigil {
namespace {

void checkIndex(std::int64_t index, std::int64_t end, const char* what) {
    if (index >= 0 && index < end) return;
    throw std::out_of_range(std::string(what) + " " + std::to_string(index) + " of " + std::to_string(end));
}

}  // namespace

RuleEditorDelegate::~RuleEditorDelegate() = default;

std::string RuleEditor::className() const {
    return "RuleEditor";
}

const RuleEditor::RowPointer& RuleEditor::rowAt(std::int64_t row) const {
    checkIndex(row, numberOfRows(), "row");
    return m_rows[static_cast<std::size_t>(row)];
}

RuleEditor::Criteria RuleEditor::criteriaForRow(std::int64_t row) const {
    return rowAt(row)->criteria;
}

RuleEditor::DisplayValues RuleEditor::displayValuesForRow(std::int64_t row) const {
    return rowAt(row)->displayValues;
}

bool RuleEditor::mayAdd() const {
    return m_rows.size() < kRuleEditorRows &&
           (m_nestingMode == RuleEditorNestingMode::List || m_rows.empty());
}

bool RuleEditor::addRow(const Object*) {
    return insertRowAtIndex(numberOfRows());
}

bool RuleEditor::insertRowAtIndex(std::int64_t index) {
    checkIndex(index, numberOfRows() + 1, "place");
    const auto self = shared_from_this();
    const auto asked = m_delegate.lock();
    if (!asked || !mayAdd()) return false;
    const bool last = index == numberOfRows();
    const std::uint64_t behind = last ? 0 : rowAt(index)->id;
    Row row{++m_nextId, {}, {}};
    if (!complete(*asked, row, index) || !mayAdd()) return false;
    // The delegate's answers may have moved the row that the new one goes before, or taken it away.
    const auto place = last ? m_rows.end()
                            : std::find_if(m_rows.begin(), m_rows.end(),
                                           [&](const RowPointer& other) { return other->id == behind; });
    m_rows.insert(place, std::make_shared<const Row>(std::move(row)));
    rowsDidChange();
    return true;
}

bool RuleEditor::removeRowAtIndex(std::int64_t index) {
    checkIndex(index, numberOfRows(), "row");
    if (!m_canRemoveAllRows && m_rows.size() == 1) return false;
    m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(index));
    rowsDidChange();
    return true;
}

void RuleEditor::setCriteria(Criteria criteria, DisplayValues displayValues, std::int64_t row) {
    const RowPointer before = rowAt(row);
    if (std::max(criteria.size(), displayValues.size()) > kRuleEditorColumns)
        throw std::length_error("a row of more than " + std::to_string(kRuleEditorColumns) + " columns");
    replace(before, Row{before->id, std::move(criteria), std::move(displayValues)});
    rowsDidChange();
}

bool RuleEditor::replace(const RowPointer& before, Row after) {
    const auto place = std::find(m_rows.begin(), m_rows.end(), before);
    if (place == m_rows.end()) return false;
    *place = std::make_shared<const Row>(std::move(after));
    return true;
}

void RuleEditor::rowsDidChange() {
    const auto self = shared_from_this();
    try {
        if (const auto told = m_delegate.lock())
            told->ruleEditorRowsDidChange({kRuleEditorRowsDidChangeNotification, self, {}});
    } catch (...) {
        // The rows did change, whatever the delegate made of it.
        m_changes.notify();
        throw;
    }
    m_changes.notify();
}

}  // namespace vigil
