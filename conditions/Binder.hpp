#pragma once

#include "conditions/ConditionNode.hpp"
#include "conditions/Program.hpp"
#include "host_contract/KeyTable.hpp"

namespace vigil {

/// Turns a tree into steps with jumps over the slots of a table. Neighbouring orderings of one numeric member
/// become one step; a comparison whose key the table lacks keeps its place and finds no value. Any thread.
Program boundProgram(const ConditionNode& tree, const KeyTable& table);

}  // namespace vigil
