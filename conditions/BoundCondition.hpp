#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "conditions/ConditionNode.hpp"
#include "host_contract/AgentProperty.hpp"
#include "host_contract/KeyTable.hpp"
#include "host_contract/Readings.hpp"
#include "platform/Export.hpp"

namespace vigil {

/// A condition whose keys have been looked up in one table: what is left is a flat program over the table's
/// slots. Judging looks nothing up and allocates nothing. Needs neither the tree nor the table any more. Any
/// thread.
class VIGIL_KIT BoundCondition {
  public:
    BoundCondition(const ConditionNode& tree, const KeyTable& table);

    std::uint64_t tableId() const { return m_tableId; }
    /// Whether the condition holds. The view must be of the table that this was bound to.
    bool holds(const ReadingsView& readings) const;

  private:
    friend class Binder;

    static constexpr KeyTable::Slot kNoSlot = std::numeric_limits<KeyTable::Slot>::max();

    /// A number of a reading, with its sign turned or not, is at most the bound. Every ordering comes down to
    /// this one test, equality to two of them. NaN passes none, and neither does a reading that is not there;
    /// the bound NaN is passed by nothing.
    struct NumberTest {
        double bound;
        std::uint64_t signFlip;  ///< the sign bit or nothing
        double AgentProperty::Parts::*member;
        KeyTable::Slot slot;

        bool holds(const AgentProperty* const* bySlot) const;
    };
    /// A text of a reading stands in one of the wanted relations to a literal.
    struct TextTest {
        std::string literal;
        KeyTable::Slot slot;
        std::uint8_t wanted;  // bits of Relation

        bool holds(const AgentProperty* const* bySlot) const;
    };
    enum class StepKind : std::uint8_t { AllNumbers, AnyNumber, Text, True, False };
    /// "Do all these tests hold?", "does any?", "does this one?", and where to go on: at `target` when the
    /// answer is `jumpWhen`, else with the next step. True and False end the program.
    struct Step {
        StepKind kind = StepKind::False;
        bool jumpWhen = false;
        std::uint32_t first = 0;
        std::uint32_t count = 0;
        std::uint32_t target = 0;
    };

    /// Whether one of the step's tests comes out as `wanted`.
    template <bool wanted>
    bool anyComesOut(const Step& step, const AgentProperty* const* bySlot) const;

    template <bool withTexts>
    bool run(const AgentProperty* const* bySlot) const;

    std::uint64_t m_tableId;
    bool m_tableIsEmpty;
    std::vector<Step> m_steps;
    std::vector<NumberTest> m_numbers;
    std::vector<TextTest> m_texts;
};

}  // namespace vigil
