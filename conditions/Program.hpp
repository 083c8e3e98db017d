#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host_contract/AgentProperty.hpp"
#include "host_contract/KeyTable.hpp"

namespace vigil {

/// A number of a reading, times 1 or -1, is at least the bound. Every ordering comes down to this one test,
/// equality to two of them. NaN passes none, and neither does a reading that is not there; the bound NaN is
/// passed by nothing.
struct NumberTest {
    double sign;
    double bound;
    KeyTable::Slot slot;

    template <double AgentProperty::Parts::*member>
    bool holds(const AgentProperty* const* bySlot) const;
};

/// A text of a reading stands in one of the wanted relations to a literal.
struct TextTest {
    static constexpr KeyTable::Slot kNoSlot = ~KeyTable::Slot{0};  ///< of a key that the table lacks

    std::string literal;
    KeyTable::Slot slot;
    std::uint8_t wanted;  ///< bits of Relation

    bool holds(const AgentProperty* const* bySlot) const;
};

enum class StepKind : std::uint8_t { AllUnitValues, AnyUnitValue, AllValues, AnyValue, Text, True, False };

/// "Do all these tests hold?", "does any?", "does this one?", and where to go on: at `target` when the answer
/// is `jumpWhen`, else with the next step. True and False end the program.
struct Step {
    StepKind kind = StepKind::False;
    bool jumpWhen = false;
    std::uint32_t target = 0;
    std::uint32_t first = 0;  ///< of the tests
    std::uint32_t end = 0;    ///< one past the last of them
};

/// A condition over the slots of one table, to be run from the first step.
struct Program {
    std::vector<Step> steps;
    std::vector<NumberTest> numbers{};
    std::vector<TextTest> texts{};
};

}  // namespace vigil
