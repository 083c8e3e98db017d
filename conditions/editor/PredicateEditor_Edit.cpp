#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "conditions/editor/LiteralText.hpp"
#include "conditions/editor/PredicateEditor.hpp"

// What people do. Each edit is tried on a copy of the rows, which takes their place when it says a condition
// or none.

namespace vigil {
namespace {

bool isFinite(const ComparisonLiteral& literal) {
    if (const auto* number = std::get_if<double>(&literal)) return std::isfinite(*number);
    if (const auto* date = std::get_if<Date>(&literal)) return std::isfinite(date->secondsSinceReference());
    return true;
}

}  // namespace

Result<Done> PredicateEditor::edit(PredicateEditorRows rows) {
    std::shared_ptr<ConditionPredicate> value;
    if (auto tree = rows.tree()) {
        auto said = ConditionPredicate::predicateWithTree(std::move(*tree));
        if (!said) return Error{said.error().message()};
        value = std::move(said).value();
    }
    const auto self = weak_from_this().lock();
    m_rows = std::move(rows);
    m_value = std::move(value);
    m_edits.notify();
    m_changes.notify();
    return Done{};
}

Result<Done> PredicateEditor::insert(std::size_t group, std::size_t position, Row row) {
    if (!rowAt(group).isGroup) throw std::out_of_range("row " + std::to_string(group) + " is no group");
    const auto place = m_rows.place(group, position);
    if (!place)
        throw std::out_of_range("position " + std::to_string(position) + " of the group in row " +
                                std::to_string(group));
    if (m_rows.size() >= kPredicateEditorRows)
        return Error{"at most " + std::to_string(kPredicateEditorRows) + " rows can stand"};
    if (row.isGroup && m_rows.at(group).depth >= kPredicateEditorDepth)
        return Error{"groups can stand at most " + std::to_string(kPredicateEditorDepth) + " levels deep"};
    PredicateEditorRows next = m_rows;
    next.insert(*place, group, std::move(row));
    return edit(std::move(next));
}

Result<Done> PredicateEditor::addRow(std::size_t group, std::size_t position) {
    rowAt(group);
    if (m_menu.properties().empty()) return Error{"the station has no readings to choose from"};
    const auto& first = m_menu.properties().front();
    const auto& operators = m_menu.operatorsOf(first.member);
    Row row;
    row.comparison = {first.key, first.member,
                      operators.empty() ? ComparisonOperator::Equal : operators.front(),
                      initialLiteral(first.member)};
    return insert(group, position, std::move(row));
}

Result<Done> PredicateEditor::addGroup(std::size_t group, std::size_t position) {
    rowAt(group);
    if (m_menu.connectives().empty()) return Error{"groups are not offered"};
    Row row;
    row.isGroup = true;
    row.connective = initialConnective();
    return insert(group, position, std::move(row));
}

Result<Done> PredicateEditor::removeRow(std::size_t row) {
    if (rowAt(row).depth == 0) return Error{"the outermost group cannot be removed"};
    PredicateEditorRows next = m_rows;
    next.erase(row);
    return edit(std::move(next));
}

Result<Done> PredicateEditor::choose(std::size_t row, std::size_t popUp, std::size_t choice) {
    if (choice >= choices(row, popUp).size())
        throw std::out_of_range("choice " + std::to_string(choice) + " of row " + std::to_string(row));
    if (chosen(rowAt(row), popUp) == choice) return Done{};
    PredicateEditorRows next = m_rows;
    Row& changed = next.at(row);
    if (changed.isGroup) {
        changed.connective = m_menu.connectives()[choice];
    } else if (popUp == 0) {
        const auto& reading = m_menu.properties()[choice];
        const auto& operators = m_menu.operatorsOf(reading.member);
        Comparison& says = changed.comparison;
        says.key = reading.key;
        if (says.member != reading.member) {
            says.member = reading.member;
            says.literal = initialLiteral(reading.member);
            const bool offered = std::find(operators.begin(), operators.end(), says.op) != operators.end();
            if (!offered && !operators.empty()) says.op = operators.front();
        }
    } else {
        changed.comparison.op = m_menu.operatorsOf(changed.comparison.member)[choice];
    }
    return edit(std::move(next));
}

Result<Done> PredicateEditor::setValue(std::size_t row, ComparisonLiteral value) {
    const Row& before = rowAt(row);
    if (before.isGroup) return Error{"a group has no value"};
    if (!literalFits(before.comparison.member, value))
        return Error{"a value of that kind does not go with " +
                     std::string(memberText(before.comparison.member))};
    if (!isFinite(value)) return Error{"a number has to be finite"};
    PredicateEditorRows next = m_rows;
    next.at(row).comparison.literal = std::move(value);
    if (next.at(row).comparison == before.comparison) return Done{};
    return edit(std::move(next));
}

Result<Done> PredicateEditor::setValueText(std::size_t row, std::string_view text) {
    const Row& before = rowAt(row);
    if (before.isGroup) return Error{"a group has no value"};
    if (text == literalText(before.comparison.literal)) return Done{};
    auto value = literalFromText(before.comparison.member, text);
    if (!value) return value.error();
    return setValue(row, std::move(value).value());
}

}  // namespace vigil
