#include "host/desktop/ConditionTree.hpp"

#include <algorithm>
#include <optional>

namespace vigil {
namespace {

using Rows = std::vector<PredicateEditorRow>;

/// The parts of each group, by rows, in their order.
std::vector<std::vector<std::size_t>> partsOf(const Rows& rows) {
    std::vector<std::vector<std::size_t>> parts(rows.size());
    for (std::size_t row = 1; row < rows.size(); ++row)
        parts[rows[row].group].push_back(row);
    return parts;
}

Connective connectiveOf(const PredicateEditorRow& row) {
    return row.popUps[0].shown == connectiveTitle(Connective::Or) ? Connective::Or : Connective::And;
}

std::optional<ConditionNode> comparisonOf(const PredicateEditorRow& row) {
    const auto parsed = ConditionPredicate::predicateWithFormat(row.condition);
    if (!parsed) return std::nullopt;
    return parsed.value()->tree();
}

/// Groups without parts say nothing. From the last row to the first, so that parts stand before their group.
std::optional<ConditionNode> treeOf(const Rows& rows, const std::vector<std::vector<std::size_t>>& parts,
                                    const std::vector<std::size_t>& order) {
    std::vector<std::optional<ConditionNode>> nodes(rows.size());
    for (auto row = order.rbegin(); row != order.rend(); ++row) {
        if (!rows[*row].isGroup) {
            nodes[*row] = comparisonOf(rows[*row]);
            continue;
        }
        std::vector<ConditionNode> held;
        for (const std::size_t part : parts[*row])
            if (nodes[part]) held.push_back(std::move(*nodes[part]));
        if (!held.empty()) nodes[*row] = ConditionNode::compound(connectiveOf(rows[*row]), std::move(held));
    }
    return nodes[0];
}

bool isInside(const Rows& rows, std::size_t row, std::size_t group) {
    while (group != 0) {
        if (group == row) return true;
        group = rows[group].group;
    }
    return row == 0;
}

/// Groups before what they hold.
std::vector<std::size_t> groupsFirst(const std::vector<std::vector<std::size_t>>& parts) {
    std::vector<std::size_t> order{0};
    for (std::size_t i = 0; i < order.size(); ++i)
        order.insert(order.end(), parts[order[i]].begin(), parts[order[i]].end());
    return order;
}

}  // namespace

std::shared_ptr<ConditionPredicate> conditionWithMoved(const Rows& rows, std::size_t row, std::size_t group,
                                                       std::size_t position) {
    if (row == 0 || row >= rows.size() || group >= rows.size() || !rows[group].isGroup) return nullptr;
    if (isInside(rows, row, group)) return nullptr;
    auto parts = partsOf(rows);
    auto& from = parts[rows[row].group];
    const auto place = static_cast<std::size_t>(std::find(from.begin(), from.end(), row) - from.begin());
    if (group == rows[row].group && (position == place || position == place + 1)) return nullptr;
    from.erase(from.begin() + static_cast<std::ptrdiff_t>(place));
    if (group == rows[row].group && position > place) --position;
    auto& to = parts[group];
    to.insert(to.begin() + static_cast<std::ptrdiff_t>(std::min(position, to.size())), row);
    auto tree = treeOf(rows, parts, groupsFirst(parts));
    if (!tree) return nullptr;
    auto made = ConditionPredicate::predicateWithTree(std::move(*tree));
    return made ? made.value() : nullptr;
}

std::optional<RowPlace> placeAbove(const Rows& rows, std::size_t row) {
    if (row == 0 || row >= rows.size()) return std::nullopt;
    const auto parts = partsOf(rows);
    const std::size_t group = rows[row].group, position = rows[row].position;
    if (position > 0) {
        const std::size_t before = parts[group][position - 1];
        if (rows[before].isGroup) return RowPlace{before, parts[before].size()};
        return RowPlace{group, position - 1};
    }
    if (group == 0) return std::nullopt;
    return RowPlace{rows[group].group, rows[group].position};
}

std::optional<RowPlace> placeBelow(const Rows& rows, std::size_t row) {
    if (row == 0 || row >= rows.size()) return std::nullopt;
    const auto parts = partsOf(rows);
    const std::size_t group = rows[row].group, position = rows[row].position;
    if (position + 1 < parts[group].size()) {
        const std::size_t behind = parts[group][position + 1];
        if (rows[behind].isGroup) return RowPlace{behind, 0};
        return RowPlace{group, position + 2};
    }
    if (group == 0) return std::nullopt;
    return RowPlace{rows[group].group, rows[group].position + 1};
}

}  // namespace vigil
