#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/RuleEditor.hpp"

// What a row may choose, asked of the delegate. Each answer may change the rows, so the work is done on
// copies and put into the editor at the end, if what it began with still stands.

namespace vigil {
namespace {

bool isSeparator(const DisplayValue& value) {
    return std::holds_alternative<std::shared_ptr<MenuItem>>(value);
}

std::optional<std::size_t> indexOf(const std::shared_ptr<Object>& node, const RuleEditor::Criteria& offered) {
    if (!node) return std::nullopt;
    auto found = std::find(offered.begin(), offered.end(), node);
    if (found == offered.end())
        found = std::find_if(offered.begin(), offered.end(),
                             [&](const auto& other) { return other && node->isEqual(other.get()); });
    if (found == offered.end()) return std::nullopt;
    return static_cast<std::size_t>(found - offered.begin());
}

/// The column of the cell, checked against a row of `columns` nodes; the one behind the last counts too.
std::size_t columnOf(RuleEditorCell cell, std::size_t columns) {
    if (cell.column >= 0 && cell.column <= static_cast<std::int64_t>(columns))
        return static_cast<std::size_t>(cell.column);
    throw std::out_of_range("column " + std::to_string(cell.column) + " of " + std::to_string(columns));
}

/// The node whose children the column offers; absent for the first.
std::shared_ptr<Object> parentOf(const RuleEditor::Criteria& path, std::size_t column) {
    return column == 0 ? nullptr : path[column - 1];
}

/// The node that the path has in the column, or nothing.
std::shared_ptr<Object> nodeIn(const RuleEditor::Criteria& path, std::size_t column) {
    return column < path.size() ? path[column] : nullptr;
}

}  // namespace

std::int64_t RuleEditor::numberOfChildren(RuleEditorDelegate& delegate,
                                          const std::shared_ptr<Object>& criterion) {
    const auto count =
        delegate.ruleEditorNumberOfChildrenForCriterion(*this, criterion, RuleEditorRowType::Simple);
    return std::clamp<std::int64_t>(count, 0, kRuleEditorChoices);
}

RuleEditor::Criteria RuleEditor::children(RuleEditorDelegate& delegate,
                                          const std::shared_ptr<Object>& criterion) {
    const std::int64_t count = numberOfChildren(delegate, criterion);
    Criteria nodes;
    for (std::int64_t i = 0; i < count; ++i)
        nodes.push_back(delegate.ruleEditorChildForCriterion(*this, i, criterion, RuleEditorRowType::Simple));
    return nodes;
}

bool RuleEditor::complete(RuleEditorDelegate& delegate, Row& row, std::int64_t index) {
    for (;;) {
        const auto parent = parentOf(row.criteria, row.criteria.size());
        const std::int64_t count = numberOfChildren(delegate, parent);
        if (count == 0) return !row.criteria.empty();
        if (row.criteria.size() == kRuleEditorColumns) return false;
        const std::size_t columns = row.criteria.size();
        for (std::int64_t i = 0; i < count && row.criteria.size() == columns; ++i) {
            auto node = delegate.ruleEditorChildForCriterion(*this, i, parent, RuleEditorRowType::Simple);
            if (!node) continue;
            auto value = delegate.ruleEditorDisplayValueForCriterion(*this, node, index);
            if (isSeparator(value)) continue;
            row.criteria.push_back(std::move(node));
            row.displayValues.push_back(std::move(value));
        }
        if (row.criteria.size() == columns) return false;
    }
}

RuleEditorChoices RuleEditor::choices(RuleEditorCell cell) {
    const auto self = shared_from_this();
    const RowPointer row = rowAt(cell.row);
    const std::size_t column = columnOf(cell, row->criteria.size());
    RuleEditorChoices offered;
    const auto asked = m_delegate.lock();
    if (!asked) return offered;
    const Criteria nodes = children(*asked, parentOf(row->criteria, column));
    offered.chosen = indexOf(nodeIn(row->criteria, column), nodes);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (offered.chosen == i)
            offered.choices.push_back({row->criteria[column], column < row->displayValues.size()
                                                                  ? row->displayValues[column]
                                                                  : DisplayValue{}});
        else
            offered.choices.push_back(
                {nodes[i], nodes[i] ? asked->ruleEditorDisplayValueForCriterion(*this, nodes[i], cell.row)
                                    : DisplayValue{}});
    }
    return offered;
}

bool RuleEditor::choose(RuleEditorCell cell, std::int64_t index) {
    const auto self = shared_from_this();
    const RowPointer before = rowAt(cell.row);
    const std::size_t column = columnOf(cell, before->criteria.size());
    const auto asked = m_delegate.lock();
    const Criteria nodes = asked ? children(*asked, parentOf(before->criteria, column)) : Criteria{};
    if (index < 0 || index >= static_cast<std::int64_t>(nodes.size()))
        throw std::out_of_range("choice " + std::to_string(index) + " of " + std::to_string(nodes.size()));
    const auto& node = nodes[static_cast<std::size_t>(index)];
    if (!node || column == kRuleEditorColumns) return false;
    if (indexOf(nodeIn(before->criteria, column), nodes) == static_cast<std::size_t>(index)) return false;
    auto value = asked->ruleEditorDisplayValueForCriterion(*this, node, cell.row);
    if (isSeparator(value)) return false;

    Row after = *before;
    after.criteria.resize(column);
    after.displayValues.resize(column);
    after.criteria.push_back(node);
    after.displayValues.push_back(std::move(value));
    if (!complete(*asked, after, cell.row) || !replace(before, std::move(after))) return false;
    rowsDidChange();
    return true;
}

void RuleEditor::reloadCriteria() {
    const auto self = shared_from_this();
    bool changed = false;
    const auto rows = m_rows;
    const auto asked = m_delegate.lock();
    for (std::size_t i = 0; asked && i < rows.size(); ++i) {
        Row row = *rows[i];
        row.displayValues.resize(row.criteria.size());
        if (complete(*asked, row, static_cast<std::int64_t>(i)) &&
            row.criteria.size() > rows[i]->criteria.size() && replace(rows[i], std::move(row)))
            changed = true;
    }
    if (changed)
        rowsDidChange();
    else
        m_changes.notify();
}

}  // namespace vigil
