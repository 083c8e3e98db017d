#include <algorithm>
#include <stdexcept>
#include <utility>

#include "conditions/Printer.hpp"
#include "conditions/editor/LiteralText.hpp"
#include "conditions/editor/PredicateEditor.hpp"

// What a view asks for.

namespace vigil {
namespace {

constexpr std::size_t kReadingPopUp = 0;

template <class T>
std::optional<std::size_t> placeOf(const std::vector<T>& list, T wanted) {
    const auto found = std::find(list.begin(), list.end(), wanted);
    if (found == list.end()) return std::nullopt;
    return static_cast<std::size_t>(found - list.begin());
}

}  // namespace

const PredicateEditorRows::Row& PredicateEditor::rowAt(std::size_t row) const {
    if (row >= m_rows.size())
        throw std::out_of_range("row " + std::to_string(row) + " of " + std::to_string(m_rows.size()));
    return m_rows.at(row);
}

std::optional<std::size_t> PredicateEditor::chosen(const Row& row, std::size_t popUp) const {
    if (row.isGroup) return placeOf(m_menu.connectives(), row.connective);
    if (popUp == kReadingPopUp) return m_menu.propertyOf(row.comparison);
    return placeOf(m_menu.operatorsOf(row.comparison.member), row.comparison.op);
}

PredicateEditorRow PredicateEditor::described(const Row& row) const {
    PredicateEditorRow shown;
    shown.id = row.id;
    shown.isGroup = row.isGroup;
    shown.depth = row.depth;
    if (row.isGroup) {
        shown.popUps = {{std::string(connectiveTitle(row.connective)), chosen(row, 0)}};
        return shown;
    }
    const Comparison& says = row.comparison;
    const auto reading = chosen(row, kReadingPopUp);
    shown.popUps = {{reading ? m_menu.properties()[*reading].title
                             : says.key + "." + std::string(memberText(says.member)),
                     reading},
                    {std::string(operatorTitle(says.op)), chosen(row, kReadingPopUp + 1)}};
    shown.value = says.literal;
    shown.valueText = literalText(says.literal);
    shown.condition = printedCondition(ConditionNode(says));
    return shown;
}

std::vector<PredicateEditorRow> PredicateEditor::rows() const {
    std::vector<PredicateEditorRow> all;
    all.reserve(m_rows.size());
    struct Open {
        std::size_t row;
        std::size_t parts;
    };
    std::vector<Open> open;  // the groups around the next row, the outermost first
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        PredicateEditorRow shown = described(m_rows.at(i));
        open.resize(shown.depth);
        if (!open.empty()) {
            shown.group = open.back().row;
            shown.position = open.back().parts++;
        }
        open.push_back({i, 0});
        all.push_back(std::move(shown));
    }
    return all;
}

std::vector<std::string> PredicateEditor::choices(std::size_t row, std::size_t popUp) const {
    const Row& asked = rowAt(row);
    if (popUp >= (asked.isGroup ? 1u : 2u))
        throw std::out_of_range("pop-up " + std::to_string(popUp) + " of row " + std::to_string(row));
    std::vector<std::string> titles;
    if (asked.isGroup) {
        for (const Connective one : m_menu.connectives())
            titles.emplace_back(connectiveTitle(one));
    } else if (popUp == kReadingPopUp) {
        for (const auto& one : m_menu.properties())
            titles.push_back(one.title);
    } else {
        for (const ComparisonOperator one : m_menu.operatorsOf(asked.comparison.member))
            titles.emplace_back(operatorTitle(one));
    }
    return titles;
}

}  // namespace vigil
