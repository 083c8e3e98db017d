#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "conditions/BoundCondition.hpp"
#include "conditions/ConditionNode.hpp"
#include "host_contract/KeyTable.hpp"

namespace vigil {

/// Fills a bound condition: turns a tree into steps with jumps. Neighbouring comparisons of numbers become
/// one step, which asks whether they all hold; for those joined by OR it asks whether the opposites all hold.
class Binder {
  public:
    Binder(const KeyTable& table, BoundCondition& bound) : m_table(table), m_bound(bound) {}

    void bind(const ConditionNode& tree);

  private:
    using Label = std::uint32_t;  // a place in the program that may not be known yet
    /// Where to go on after a node. One of the two is `next`, what is placed right behind the node's code.
    struct Exits {
        Label whenTrue;
        Label whenFalse;
        Label next;
    };

    void node(const ConditionNode& node, Exits exits);
    void compound(const ConditionNode& node, Exits exits);
    void orderings(const ConditionNode* first, std::size_t count, Connective connective, Exits exits);
    void equality(const Comparison& comparison, Exits exits);
    void text(const Comparison& comparison, Exits exits);

    void step(BoundCondition::StepKind kind, std::size_t first, std::size_t count, Label yes, Label no,
              Label next);
    void numberTest(const Comparison& comparison, ComparisonOperator ordering);
    Label newLabel();
    void place(Label label);

    const KeyTable& m_table;
    BoundCondition& m_bound;
    std::vector<std::uint32_t> m_places;  // of each label, as an index of a step
};

}  // namespace vigil
