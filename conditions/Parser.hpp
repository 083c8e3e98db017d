#pragma once

#include <string_view>

#include "conditions/ConditionNode.hpp"
#include "conditions/SyntaxError.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// The tree of a condition's text. `OR` of three parts is one node of three parts; a group in parentheses
/// inside a group stays a node of its own; parentheses round one comparison or round the whole vanish. A
/// text longer than kMaxTextBytes or nested deeper than kMaxParenthesisDepth is refused, and so is one whose
/// printed form would nest deeper (`a AND b OR c` prints parentheses that it lacks). Works without recursion.
/// Any thread.
Result<ConditionNode, SyntaxError> parseCondition(std::string_view text);

}  // namespace vigil
