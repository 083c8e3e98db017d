#pragma once

#include <cstdint>

#include "conditions/ConditionNode.hpp"

namespace vigil {

/// How a reading's text stands to a literal, as bits, so that an operator is the set of relations it wants.
enum Relation : std::uint8_t { kLess = 1, kEqual = 2, kGreater = 4, kNoValue = 8 };

constexpr std::uint8_t wantedRelations(ComparisonOperator op) {
    switch (op) {
        case ComparisonOperator::Equal:
            return kEqual;
        case ComparisonOperator::NotEqual:
            return kLess | kGreater | kNoValue;
        case ComparisonOperator::Less:
            return kLess;
        case ComparisonOperator::LessOrEqual:
            return kLess | kEqual;
        case ComparisonOperator::Greater:
            return kGreater;
        case ComparisonOperator::GreaterOrEqual:
            return kGreater | kEqual;
    }
    return 0;
}

}  // namespace vigil
