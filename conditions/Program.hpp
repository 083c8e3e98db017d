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

enum class StepKind : std::uint8_t { AllUnitValues, AnyUnitValue, AllValues, AnyValue, Text };

/// A place in a program: a step, or one of the two ends.
using Place = std::uint32_t;
inline constexpr Place kFails = ~Place{0} - 1;
inline constexpr Place kHolds = ~Place{0};

/// "Do all these tests hold?", "does any?", "does this one?", and where to go on for either answer.
struct Step {
    StepKind kind = StepKind::AllUnitValues;
    std::uint32_t first = 0;  ///< of the tests
    std::uint32_t end = 0;    ///< one past the last of them
    Place whenTrue = kHolds;
    Place whenFalse = kFails;
};

/// A condition over the slots of one table.
struct Program {
    Place start = kFails;
    std::vector<Step> steps{};
    std::vector<NumberTest> numbers{};
    std::vector<TextTest> texts{};
};

}  // namespace vigil
