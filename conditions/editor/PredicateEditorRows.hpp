#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "conditions/ConditionNode.hpp"

namespace vigil {

/// An editor's rows as one list: a group, then its parts, each one level deeper. Row 0 is the outermost
/// group, which is always there. A value.
class PredicateEditorRows {
  public:
    struct Row {
        std::uint64_t id = 0;
        bool isGroup = false;
        std::size_t depth = 0;
        Connective connective = Connective::And;  ///< of a group
        Comparison comparison{};                  ///< of any other row
    };

    /// The outermost group alone.
    explicit PredicateEditorRows(Connective outermost);
    /// The rows of a tree. A comparison alone stands in an outermost group with that connective.
    PredicateEditorRows(const ConditionNode& tree, Connective outermost);

    /// What the rows say: a group of one part is that part, one of none is left out; nothing when no
    /// comparison is there.
    std::optional<ConditionNode> tree() const;

    std::size_t size() const { return m_rows.size(); }
    const Row& at(std::size_t row) const { return m_rows.at(row); }
    Row& at(std::size_t row) { return m_rows.at(row); }
    /// One past the last row that belongs to `row`: its parts, their parts, and so on.
    std::size_t end(std::size_t row) const;
    /// Where in the list the part at `position` of the group begins; the end of the group for the position
    /// behind its last part; nothing further on, or where the row is no group.
    std::optional<std::size_t> place(std::size_t group, std::size_t position) const;

    /// Puts a row at a place of the list that `place` gave for the group. It gets an id of its own.
    void insert(std::size_t place, std::size_t group, Row row);
    /// Takes a row away with all that belongs to it.
    void erase(std::size_t row);

  private:
    void append(const ConditionNode& node, std::size_t depth);

    std::vector<Row> m_rows;
    std::uint64_t m_nextId = 0;
};

}  // namespace vigil
