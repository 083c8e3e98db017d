#include "conditions/editor/PredicateEditorRows.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vigil {

PredicateEditorRows::PredicateEditorRows(Connective outermost) {
    m_rows.push_back({.id = m_nextId++, .isGroup = true, .connective = outermost});
}

PredicateEditorRows::PredicateEditorRows(const ConditionNode& tree, Connective outermost) {
    if (!tree.isCompound()) m_rows.push_back({.id = m_nextId++, .isGroup = true, .connective = outermost});
    append(tree, tree.isCompound() ? 0 : 1);
}

// The depth of a tree is bounded, so this is too.
void PredicateEditorRows::append(const ConditionNode& node, std::size_t depth) {
    Row row{.id = m_nextId++, .isGroup = node.isCompound(), .depth = depth, .connective = node.connective()};
    if (const Comparison* comparison = node.comparison()) row.comparison = *comparison;
    m_rows.push_back(std::move(row));
    for (const ConditionNode& part : node.parts())
        append(part, depth + 1);
}

std::optional<ConditionNode> PredicateEditorRows::tree() const {
    // From the last row up: what stands at each depth and has not met its group yet, the last part first.
    std::vector<std::vector<ConditionNode>> waiting(1);
    for (auto row = m_rows.rbegin(); row != m_rows.rend(); ++row) {
        if (waiting.size() < row->depth + 2) waiting.resize(row->depth + 2);
        if (!row->isGroup) {
            waiting[row->depth].emplace_back(row->comparison);
            continue;
        }
        std::vector<ConditionNode> parts = std::exchange(waiting[row->depth + 1], {});
        if (parts.empty()) continue;
        std::reverse(parts.begin(), parts.end());
        waiting[row->depth].push_back(ConditionNode::compound(row->connective, std::move(parts)));
    }
    if (waiting[0].empty()) return std::nullopt;
    return std::move(waiting[0].front());
}

std::size_t PredicateEditorRows::end(std::size_t row) const {
    const std::size_t depth = at(row).depth;
    std::size_t behind = row + 1;
    while (behind < m_rows.size() && m_rows[behind].depth > depth)
        ++behind;
    return behind;
}

std::optional<std::size_t> PredicateEditorRows::place(std::size_t group, std::size_t position) const {
    if (group >= m_rows.size() || !m_rows[group].isGroup) return std::nullopt;
    const std::size_t last = end(group);
    std::size_t place = group + 1;
    for (std::size_t passed = 0; passed < position; ++passed) {
        if (place == last) return std::nullopt;
        place = end(place);
    }
    return place;
}

void PredicateEditorRows::insert(std::size_t place, std::size_t group, Row row) {
    row.id = m_nextId++;
    row.depth = at(group).depth + 1;
    m_rows.insert(std::next(m_rows.begin(), static_cast<std::ptrdiff_t>(place)), std::move(row));
}

void PredicateEditorRows::erase(std::size_t row) {
    m_rows.erase(std::next(m_rows.begin(), static_cast<std::ptrdiff_t>(row)),
                 std::next(m_rows.begin(), static_cast<std::ptrdiff_t>(end(row))));
}

}  // namespace vigil
